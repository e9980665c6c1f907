// Reads the value of a property record from the block of its message.
//
// `position` is MessageBlock::Position of the record's value: the place at which the page map holds the
// 16-bit start and end of the value's allocation. An end that lies beyond the block cuts the value there.
// Every text ends at its first NUL.
#pragma once

#include <cstdint>

#include "recovery/item_converter.h"
#include "store/operations.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::items {

/// The id of the tables: a named property's local id, which differs from store to store, becomes the long
/// id that the store's name map gives it; every other id, and a local id without a pair, keeps its number.
inline std::uint32_t LongIdOf(const recovery::ConversionScope& scope, std::uint16_t id) {
  return id >= 0x8000 && id <= 0x8FFF ? scope.namedProps->TranslateNamedId(id) : id;
}

/// A flag of a record lives in the low 16 bits of its value.
inline bool FlagOf(std::uint32_t value) { return (value & 0xFFFF) != 0; }

/// A text, or a list of texts joined by ";", by the record's type; empty on every failure and for every
/// type that is no text.
text::Text ReadStringValue(const recovery::MessageBlock& block, const text::CodePage& codePage, PropType type,
                           std::uint32_t position);

/// A date. A record that is no time gives 0.0; a time whose allocation is not of 8 bytes is the file time 0,
/// the first day of 1601 (docs/fidelity.md#first-of-1601).
output::OleDate ReadTimeValue(const recovery::MessageBlock& block, PropType type, std::uint32_t position);

/// A single text of a mail, which may be too long for the block: one whose allocation is not found in it is
/// looked for in the sub-node `value`.
text::Text ReadHeapString(const recovery::ConversionScope& scope, const recovery::MessageBlock& block, PropType type,
                          std::uint32_t position, std::uint32_t value);

}  // namespace velmora::items
