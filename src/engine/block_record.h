// Where a block lies: as the scan found it, and as the field-by-field rules know it.
#pragma once

#include <cstdint>

#include "store/format/generation.h"
#include "store/format/ids.h"

namespace velmora::engine {

/// The field-by-field rules know a block by the low 32 bits of its id, wherever they sort, compare or look up.
constexpr std::uint32_t LowBid(Bid bid) { return static_cast<std::uint32_t>(Value(bid)); }

/// The most data that a block of any generation has. The scans take what a store says of larger ones for chance.
inline constexpr std::uint32_t kMostBlockData = generations::kUnicode4k.maxBlockData;

struct PlacedBlock {
  PlacedBlock() = default;
  PlacedBlock(std::uint64_t theBid, std::uint32_t theSize, std::uint64_t theOffset)
      : bid(Bid{theBid}), size(theSize), offset(theOffset) {}

  Bid bid{};
  std::uint32_t size = 0;    ///< stored size in bytes
  std::uint64_t offset = 0;  ///< file offset in bytes

  friend bool operator==(const PlacedBlock&, const PlacedBlock&) = default;
};

/// In the index file a record is 16 bytes: bid, size (u32 each), offset (u64), little-endian.
struct BlockRecord {
  std::uint32_t bid = 0;     ///< low 32 bits of the block id
  std::uint32_t size = 0;    ///< stored size in bytes; after inflation a holder keeps the inflated size here
  std::uint64_t offset = 0;  ///< file offset in bytes

  friend bool operator==(const BlockRecord&, const BlockRecord&) = default;
};

inline BlockRecord RecordOf(const PlacedBlock& block) { return {LowBid(block.bid), block.size, block.offset}; }

}  // namespace velmora::engine
