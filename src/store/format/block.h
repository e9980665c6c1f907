// Blocks stand at multiples of a unit of file space: the data, zeros, and at the end of the last unit the trailer.
//
//   ANSI      0 cb u16 | 2 wSig u16 | 4 bid u32 | 8 dwCRC u32
//   Unicode   0 cb u16 | 2 wSig u16 | 4 dwCRC u32 | 8 bid u64
//   4K        as Unicode, then 16 u16 (2) | 18 size inflated u16 | 20 u32
//
// cb and dwCRC are of the data as stored. Internal blocks hold references, `word` being 4 bytes in ANSI, else 8:
//
//   XBLOCK, XXBLOCK   0 btype 1 | 1 cLevel 1, 2 | 2 cEnt u16 | 4 lcbTotal u32  | 8 bid word ...
//   SLBLOCK           0 btype 2 | 1 cLevel 0    | 2 cEnt u16 | 4 padding, not in ANSI | {nid, bidData, bidSub: word}
//   ... SIBLOCK           0 btype 2 | 1 cLevel 1    | 2 cEnt u16 | 4 padding, not in ANSI | {nid, bid: word} ...
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "store/format/encoding.h"
#include "store/format/generation.h"
#include "store/format/page.h"

namespace velmora {

/// Of the stores that are written.
inline constexpr std::size_t kMaxBlockData = generations::kUnicode.maxBlockData;
inline constexpr std::size_t kSlotSize = generations::kUnicode.slotSize;
inline constexpr std::size_t kBlockTrailerSize = generations::kUnicode.blockTrailerSize;
inline constexpr std::size_t kMaxBlockSize = kMaxBlockData + kBlockTrailerSize;

/// Bytes on disk of a block of `cb` stored bytes.
constexpr std::size_t BlockSizeOnDisk(std::size_t cb, const Generation& generation = generations::kUnicode) {
  return (cb + generation.blockTrailerSize + generation.slotSize - 1) / generation.slotSize * generation.slotSize;
}

struct BlockTrailer {
  std::uint16_t cb = 0;
  std::uint16_t wSig = 0;
  std::uint32_t dwCRC = 0;
  Bid bid{};
  std::uint16_t cbInflated = 0;  ///< of a packed block; cb of others
};

void Encode(const BlockTrailer& trailer, std::span<std::byte> out);
BlockTrailer DecodeBlockTrailer(std::span<const std::byte> in, const Generation& generation = generations::kUnicode);

/// The data of a block as they are stored, encoded, and the checksum of its trailer, which is theirs.
struct StoredData {
  std::span<const std::byte> bytes;
  std::uint32_t crc = 0;
};

/// Why a block, as it lies in the file with its trailer, is not the one of that id, place and stored size; empty
/// when it is.
std::string_view WhyNotBlock(std::span<const std::byte> block, const Bref& ref, std::size_t cb,
                             const Generation& generation);

/// Makes the content of a block of what WhyNotBlock found to be one: without trailer, decoded, inflated. False when
/// it is packed and does not inflate to the size that it tells.
bool UnpackBlock(std::vector<std::byte>& block, Bid bid, std::size_t cb, CryptMethod method,
                 const Generation& generation);

// ---- internal blocks

enum class BlockType : std::uint8_t { kDataTree = 1, kSubnodeTree = 2 };

/// Type and level as one word, by which a block is told at a glance.
constexpr std::uint16_t HeadWord(BlockType type, std::uint8_t level) {
  return static_cast<std::uint16_t>(level << 8 | static_cast<int>(type));
}
inline constexpr std::uint16_t kXBlock = HeadWord(BlockType::kDataTree, 1);
inline constexpr std::uint16_t kXxBlock = HeadWord(BlockType::kDataTree, 2);
inline constexpr std::uint16_t kSlBlock = HeadWord(BlockType::kSubnodeTree, 0);
inline constexpr std::uint16_t kSiBlock = HeadWord(BlockType::kSubnodeTree, 1);

struct InternalHead {
  static constexpr std::size_t kSize = 8;  ///< but for the sub-node blocks of ANSI
  BlockType btype = BlockType::kDataTree;
  std::uint8_t cLevel = 0;
  std::uint16_t cEnt = 0;
  std::uint32_t lcbTotal = 0;  ///< of data trees: bytes of all data blocks below
};

void Encode(const InternalHead& head, std::span<std::byte> out);
InternalHead DecodeInternalHead(std::span<const std::byte> in);

/// An internal block of any generation, read where it lies: words behind a head.
class InternalBlock {
 public:
  InternalBlock(std::span<const std::byte> bytes, const Generation& generation)
      : bytes_(bytes), generation_(&generation), head_(DecodeInternalHead(bytes)) {}

  const InternalHead& Head() const { return head_; }

  /// Words of an entry; 0 when there is no such block.
  std::size_t WordsOfEntry() const {
    if (head_.btype == BlockType::kDataTree) return head_.cLevel == 1 || head_.cLevel == 2 ? 1 : 0;
    if (head_.btype != BlockType::kSubnodeTree) return 0;
    return head_.cLevel == 0 ? 3 : head_.cLevel == 1 ? 2 : 0;
  }
  bool IsKnown() const { return WordsOfEntry() != 0 && bytes_.size() >= HeadSize(); }

  /// Entries that lie in the block, of which it may claim more.
  std::size_t EntryCount() const {
    return IsKnown() ? std::min<std::size_t>(head_.cEnt, (bytes_.size() - HeadSize()) / EntrySize()) : 0;
  }

  /// A word of an entry that lies in the block: of data trees the block; of sub-node trees the node (of whose word
  /// the high half is rubbish in stores of other makers), then data and sub-nodes, or the block below.
  Nid EntryNid(std::size_t entry) const { return Nid{static_cast<std::uint32_t>(Word(entry, 0))}; }
  Bid EntryBid(std::size_t entry, std::size_t word) const { return Bid{Word(entry, word)}; }

 private:
  std::size_t HeadSize() const {
    return head_.btype == BlockType::kSubnodeTree ? generation_->subnodeHeadSize : InternalHead::kSize;
  }
  std::size_t EntrySize() const { return WordsOfEntry() * generation_->idWidth; }
  std::uint64_t Word(std::size_t entry, std::size_t word) const {
    return generation_->LoadWord(bytes_, HeadSize() + entry * EntrySize() + word * generation_->idWidth);
  }

  std::span<const std::byte> bytes_;
  const Generation* generation_;
  InternalHead head_;
};

inline constexpr std::size_t kXEntrySize = 8;
inline constexpr std::size_t kSlEntrySize = 24;
inline constexpr std::size_t kSiEntrySize = 16;

/// Most entries of so many words in an internal block.
constexpr std::size_t MaxInternalEntries(BlockType type, std::size_t words, const Generation& generation) {
  const std::size_t head = type == BlockType::kSubnodeTree ? generation.subnodeHeadSize : InternalHead::kSize;
  return (generation.maxBlockData - head) / (words * generation.idWidth);
}
inline constexpr std::size_t kMaxXEntries = MaxInternalEntries(BlockType::kDataTree, 1, generations::kUnicode);
inline constexpr std::size_t kMaxSlEntries = MaxInternalEntries(BlockType::kSubnodeTree, 3, generations::kUnicode);
inline constexpr std::size_t kMaxSiEntries = MaxInternalEntries(BlockType::kSubnodeTree, 2, generations::kUnicode);
static_assert(kMaxXEntries == 1021 && kMaxSlEntries == 340 && kMaxSiEntries == 510);

/// Calls `visit(bid)` for each block that an internal block refers to, entries beyond its end left out.
template <class Visit>
void ForEachReference(const InternalBlock& block, Visit visit) {
  const bool isData = block.Head().btype == BlockType::kDataTree;
  for (std::size_t i = 0; i < block.EntryCount(); ++i) {
    for (std::size_t word = isData ? 0 : 1; word < block.WordsOfEntry(); ++word) {
      if (const Bid bid = block.EntryBid(i, word); bid != kNoBid) visit(bid);
    }
  }
}

}  // namespace velmora
