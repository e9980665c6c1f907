// Blocks by ascending id, packed.
#pragma once

#include <cstdint>

#include "engine/evidence/found_block.h"
#include "engine/packed_list.h"

namespace velmora::engine {

/// By the whole id. Kind, grade and whether a block is named are its marks, the kind on top, since most blocks have the
/// lowest and so leave its bits out.
struct FoundBlockFields {
  using Key = Bid;

  static PackedFields Of(const FoundBlock& block) {
    return {.key = Value(block.bid),
            .offset = block.offset,
            .marks = std::uint64_t{static_cast<std::uint8_t>(block.kind)} << kKindShift |
                     std::uint64_t{block.isNamed} << kGradeBits | static_cast<std::uint8_t>(block.grade),
            .size = block.cb};
  }

  static FoundBlock BlockOf(const PackedFields& fields) {
    return {.bid = Bid{fields.key},
            .offset = fields.offset,
            .cb = static_cast<std::uint16_t>(fields.size),
            .kind = static_cast<BlockKind>(fields.marks >> kKindShift),
            .grade = static_cast<Grade>(fields.marks & ((1U << kGradeBits) - 1)),
            .isNamed = (fields.marks >> kGradeBits & 1) != 0};
  }

 private:
  static constexpr unsigned kGradeBits = 2;
  static constexpr unsigned kKindShift = kGradeBits + 1;
};

using BlockList = PackedList<FoundBlock, FoundBlockFields>;

}  // namespace velmora::engine
