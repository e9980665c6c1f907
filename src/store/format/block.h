// Blocks: up to 8192 bytes at offsets that are multiples of 64. Data first, zeros, and in the last 16 bytes
// of the multiple of 64 the trailer:
//
//   0 cb u16 | 2 wSig u16 | 4 dwCRC u32 (of the cb bytes as stored) | 8 bid u64
//
// Internal blocks hold references:
//
//   XBLOCK, XXBLOCK   0 btype 1 | 1 cLevel 1, 2 | 2 cEnt u16 | 4 lcbTotal u32  | 8 bid u64 ...
//   SLBLOCK           0 btype 2 | 1 cLevel 0    | 2 cEnt u16 | 4 dwPadding u32 | 8 {nid u64, bidData u64, bidSub u64}
//   ... SIBLOCK           0 btype 2 | 1 cLevel 1    | 2 cEnt u16 | 4 dwPadding u32 | 8 {nid u64, bid u64} ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/ids.h"
#include "store/format/little_endian.h"

namespace velmora {

/// Most bytes of data in a block; a block on disk takes up to 8192 with its trailer.
inline constexpr std::size_t kMaxBlockData = 8176;

inline constexpr std::size_t kSlotSize = 64;  ///< unit of file space
inline constexpr std::size_t kBlockTrailerSize = 16;
inline constexpr std::size_t kMaxBlockSize = kMaxBlockData + kBlockTrailerSize;
static_assert(kMaxBlockSize == 8192);

/// Bytes on disk of a block of `cb` bytes of data.
constexpr std::size_t BlockSizeOnDisk(std::size_t cb) {
  return (cb + kBlockTrailerSize + kSlotSize - 1) / kSlotSize * kSlotSize;
}

struct BlockTrailer {
  static constexpr std::size_t kSize = kBlockTrailerSize;
  std::uint16_t cb = 0;
  std::uint16_t wSig = 0;
  std::uint32_t dwCRC = 0;
  Bid bid{};
};

void Encode(const BlockTrailer& trailer, std::span<std::byte> out);
BlockTrailer DecodeBlockTrailer(std::span<const std::byte> in);

// ---- internal blocks

enum class BlockType : std::uint8_t { kDataTree = 1, kSubnodeTree = 2 };

struct InternalHead {
  static constexpr std::size_t kSize = 8;
  BlockType btype = BlockType::kDataTree;
  std::uint8_t cLevel = 0;
  std::uint16_t cEnt = 0;
  std::uint32_t lcbTotal = 0;  ///< of data trees: bytes of all data blocks below
};

void Encode(const InternalHead& head, std::span<std::byte> out);
InternalHead DecodeInternalHead(std::span<const std::byte> in);

inline constexpr std::size_t kXEntrySize = 8;
inline constexpr std::size_t kSlEntrySize = 24;
inline constexpr std::size_t kSiEntrySize = 16;

/// Most entries of that size in an internal block.
constexpr std::size_t MaxInternalEntries(std::size_t entrySize) {
  return (kMaxBlockData - InternalHead::kSize) / entrySize;
}
inline constexpr std::size_t kMaxXEntries = MaxInternalEntries(kXEntrySize);
inline constexpr std::size_t kMaxSlEntries = MaxInternalEntries(kSlEntrySize);
inline constexpr std::size_t kMaxSiEntries = MaxInternalEntries(kSiEntrySize);
static_assert(kMaxXEntries == 1021 && kMaxSlEntries == 340 && kMaxSiEntries == 510);

/// Bytes of one entry of an internal block with that head; 0 when there is no such block.
constexpr std::size_t EntrySize(const InternalHead& head) {
  if (head.btype == BlockType::kDataTree) return head.cLevel == 1 || head.cLevel == 2 ? kXEntrySize : 0;
  if (head.btype != BlockType::kSubnodeTree) return 0;
  return head.cLevel == 0 ? kSlEntrySize : head.cLevel == 1 ? kSiEntrySize : 0;
}

/// Calls `visit(bid)` for each block that an internal block refers to, entries beyond its end left out.
template <class Visit>
void ForEachReference(std::span<const std::byte> block, Visit visit) {
  const InternalHead head = DecodeInternalHead(block);
  const std::size_t size = EntrySize(head);
  for (std::size_t i = 0; size != 0 && i < head.cEnt; ++i) {
    const std::size_t at = InternalHead::kSize + i * size;
    if (at + size > block.size()) return;
    // All words of an entry are references but the leading node id of sub-node entries.
    for (std::size_t word = size == kXEntrySize ? 0 : 8; word < size; word += 8) {
      if (const Bid bid = LoadBid(block, at + word); bid != kNoBid) visit(bid);
    }
  }
}

}  // namespace velmora
