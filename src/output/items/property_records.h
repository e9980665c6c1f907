// What every converter looks at in a property record: its type and the id by which the tables know it.
#pragma once

#include <cstdint>

#include "recovery/item_converter.h"

namespace velmora::items {

// Property types under their published names.
inline constexpr std::uint16_t PT_SHORT = 0x0002;
inline constexpr std::uint16_t PT_LONG = 0x0003;
inline constexpr std::uint16_t PT_BOOLEAN = 0x000B;
inline constexpr std::uint16_t PT_STRING8 = 0x001E;
inline constexpr std::uint16_t PT_UNICODE = 0x001F;
inline constexpr std::uint16_t PT_SYSTIME = 0x0040;
inline constexpr std::uint16_t PT_MV_STRING8 = 0x101E;
inline constexpr std::uint16_t PT_MV_UNICODE = 0x101F;

/// The id of the tables: a named property's local id, which differs from store to store, becomes the long
/// id that the store's name map gives it; every other id, and a local id without a pair, keeps its number.
inline std::uint32_t LongIdOf(const recovery::ConversionScope& scope, std::uint16_t id) {
  return id >= 0x8000 && id <= 0x8FFF ? scope.namedProps->TranslateNamedId(id) : id;
}

/// A flag of a record lives in the low 16 bits of its value.
inline bool FlagOf(std::uint32_t value) { return (value & 0xFFFF) != 0; }

}  // namespace velmora::items
