// What every converter looks at in a property record: its type and the id by which the tables know it.
#pragma once

#include <cstdint>

#include "recovery/item_converter.h"
#include "store/format/prop_tag.h"

namespace velmora::items {

/// The id of the tables: a named property's local id, which differs from store to store, becomes the long
/// id that the store's name map gives it; every other id, and a local id without a pair, keeps its number.
inline std::uint32_t LongIdOf(const recovery::ConversionScope& scope, std::uint16_t id) {
  return id >= 0x8000 && id <= 0x8FFF ? scope.namedProps->TranslateNamedId(id) : id;
}

/// A flag of a record lives in the low 16 bits of its value.
inline bool FlagOf(std::uint32_t value) { return (value & 0xFFFF) != 0; }

}  // namespace velmora::items
