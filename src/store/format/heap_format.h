// A heap: many small items in the data blocks of one node.
//
//   block   | head (12, 66 or 2 bytes) | item 1 | item 2 | ... | pad to even | page map | zeros |
//   page map| cAlloc u16 | cFree u16 | rgibAlloc u16[cAlloc + 1] |
//
// Block 0 begins with a HNHDR, blocks 8, 136, 264 ... with a HNBITMAPHDR, the others with a HNPAGEHDR. The
// last block ends behind its page map; the others have the most data that a block may have.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/format/block.h"

namespace velmora {

/// Heap item id: item number (from 1) above 5 bits of type, block above it. How the bits are shared out depends on the
/// generation. 0 stands for "no item".
using Hid = std::uint32_t;

/// A Hid when its low 5 bits are 0, else the id of a sub-node of the same node.
using Hnid = std::uint32_t;

constexpr std::uint32_t HidBlockShift(const Generation& generation) { return kNidTypeBits + generation.hidItemBits; }

/// Of a heap that is written.
constexpr Hid MakeHid(std::uint32_t block, std::uint32_t item) {
  return block << HidBlockShift(generations::kUnicode) | item << kNidTypeBits;
}
constexpr std::uint32_t BlockOf(Hid hid, const Generation& generation = generations::kUnicode) {
  return hid >> HidBlockShift(generation);
}
constexpr std::uint32_t ItemOf(Hid hid, const Generation& generation = generations::kUnicode) {
  return hid >> kNidTypeBits & ((1u << generation.hidItemBits) - 1);
}
constexpr bool IsHid(Hnid hnid) { return (hnid & (kNidTypeCount - 1)) == 0; }

/// Most blocks that item ids tell apart.
constexpr std::size_t MaxHeapBlocks(const Generation& generation) {
  return std::size_t{1} << (32 - HidBlockShift(generation));
}

inline constexpr std::size_t kMaxHeapItem = 3580;
inline constexpr std::size_t kMaxHeapItemsPerBlock = (1u << generations::kUnicode.hidItemBits) - 1;
inline constexpr std::size_t kMaxHeapBlocks = MaxHeapBlocks(generations::kUnicode);
static_assert(kMaxHeapItemsPerBlock == 2047 && kMaxHeapBlocks == 65536);

/// bClientSig: what a heap holds.
enum class ClientSig : std::uint8_t { kTableContext = 0x7C, kBTree = 0xB5, kPropertyContext = 0xBC };

inline constexpr std::uint8_t kHeapSig = 0xEC;

/// The word behind the first of a heap: bSig and bClientSig.
constexpr std::uint16_t HeapWord(ClientSig sig) {
  return static_cast<std::uint16_t>(static_cast<int>(sig) << 8 | kHeapSig);
}
inline constexpr std::size_t kOffHeapWord = 2;
inline constexpr std::size_t kHnHdrSize = 12;
inline constexpr std::size_t kHnPageHdrSize = 2;
inline constexpr std::size_t kHnBitmapHdrSize = 66;
inline constexpr std::size_t kFillLevelsInHnHdr = 8;
inline constexpr std::size_t kFillLevelsInBitmapHdr = 128;

/// Whether a heap block begins with a HNBITMAPHDR.
constexpr bool HasBitmapHdr(std::size_t block) { return block >= 8 && (block - 8) % kFillLevelsInBitmapHdr == 0; }

constexpr std::size_t HeadSize(std::size_t block) {
  return block == 0 ? kHnHdrSize : HasBitmapHdr(block) ? kHnBitmapHdrSize : kHnPageHdrSize;
}

/// End of the page map of a block whose items end at `itemsEnd`.
constexpr std::size_t PageMapEnd(std::size_t itemsEnd, std::size_t itemCount) {
  return ((itemsEnd + 1) & ~std::size_t{1}) + 4 + 2 * (itemCount + 1);
}

/// The nibble that tells how much room is left in a block.
constexpr std::uint8_t FillLevel(std::size_t itemsEnd, std::size_t itemCount) {
  constexpr std::uint16_t kAtLeast[] = {3584, 2560, 2048, 1792, 1536, 1280, 1024, 768, 512, 256, 128, 64, 32, 16, 4};
  const std::size_t used = itemsEnd + 4 + 2 * (itemCount + 1);
  const std::size_t free = used < kMaxBlockData ? kMaxBlockData - used : 0;
  std::uint8_t level = 0;
  for (const std::uint16_t atLeast : kAtLeast) {
    if (free >= atLeast) return level;
    ++level;
  }
  return level;
}

}  // namespace velmora
