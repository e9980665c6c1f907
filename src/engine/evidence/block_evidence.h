// What bytes prove of a block, and what they tell of its kind and of the encoding of the store.
//
// A block ends in a trailer at the end of a unit of file space, so its place is known from its end: the trailer tells
// how long it is. Size and id that a block may have and the signature of id and place are cheap to test, and few bytes
// that are no trailer pass; the checksum decides.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/evidence/evidence.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/little_endian.h"

namespace velmora::engine {

/// A trailer that may be one. The block would have been written at `start`.
struct SeenTrailer {
  BlockTrailer trailer;
  std::uint64_t start = 0;
  bool isSigned = false;
};

/// No counter of ids comes as far as this.
inline constexpr std::uint64_t kBidLimit = std::uint64_t{1} << 40;

/// The trailer of a block whose last unit was written to end at `end`; `tail` are the bytes of the trailer. In place,
/// since it is asked for every unit of the file.
inline std::optional<SeenTrailer> SeeTrailer(std::span<const std::byte> tail, std::uint64_t end,
                                             const Generation& layout) {
  const std::uint64_t bid = layout.LoadWord(tail, layout.offBlockId);
  const auto cb = Load<std::uint16_t>(tail, 0);
  // One question, as each alone is often answered either way.
  const bool isNone = (bid == 0) | ((bid & 1) != 0) | (bid >= kBidLimit) | (cb == 0) | (cb > layout.maxBlockData);
  if (isNone) return std::nullopt;
  const std::size_t size = BlockSizeOnDisk(cb, layout);
  if (size > end) return std::nullopt;
  const bool isSigned = Load<std::uint16_t>(tail, 2) == ComputeSig(end - size, bid);
  return SeenTrailer{DecodeBlockTrailer(tail, layout), end - size, isSigned};
}

/// The ways to encode a store, as an array index each.
inline constexpr std::array kMethods = {CryptMethod::kNone, CryptMethod::kPermute, CryptMethod::kCyclic};

/// What a block is, if the store is encoded by each of the methods.
using Kinds = std::array<BlockKind, kMethods.size()>;

/// The kind of a block by its bytes as they are stored. A list whose count does not fit is data, and so is everything
/// but a list and the first block of a heap.
Kinds KindsOf(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout);

/// The same without inflating anything, which takes far longer than all else: kPacked by each method by which a packed
/// block begins like one.
Kinds KindsAtSight(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout);

/// Its kind if the store is encoded by that method.
BlockKind KindOf(std::span<const std::byte> stored, const BlockTrailer& trailer, const Generation& layout,
                 CryptMethod method);

}  // namespace velmora::engine
