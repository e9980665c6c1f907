// All blocks of a store that is being written, 6 bytes each: the block tree before it becomes pages.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <unordered_map>

#include "store/format/block.h"
#include "store/format/ids.h"

namespace velmora::ndb {

/// Block ids are handed out in a row, so the number of a block is the place of its entry. The list grows by pieces:
/// while one that doubles is moved, it takes three times its memory.
class BlockTable {
 public:
  struct Block {
    std::uint64_t ib = 0;
    std::uint16_t cb = 0;
    std::uint16_t references = 0;
  };

  static constexpr std::uint16_t kMaxReferences = 0xFFFE;  ///< cRef counts one more

  /// The id that the next block gets; nothing when ids are used up.
  std::optional<Bid> NextBid(bool internal) const;

  /// Enters the block that got the next id.
  void Append(bool internal, std::uint64_t ib, std::uint16_t cb);

  /// The block of that id (bit 0 ignored), or nothing.
  std::optional<Block> Find(Bid bid) const;

  /// One reference more; false when there are kMaxReferences, or no such block.
  bool AddReference(Bid bid);

  /// One reference less, of a block that has one; returns how many are left.
  std::uint16_t DropReference(Bid bid);

  /// Forgets a block; its id is never used again.
  void Remove(Bid bid);

  /// Number of blocks, and the value of bidNextB.
  std::size_t Count() const { return count_; }
  Bid BidNextB() const { return Bid{NumberOf(entries_.size())}; }

  /// Calls `visit(bid, block)` for each block by ascending id.
  template <class Visit>
  void ForEach(Visit visit) const {
    std::size_t i = 0;
    for (const Entry& entry : entries_) {
      if (entry.Exists()) visit(Bid{NumberOf(i) | (entry.isInternal != 0 ? kBidInternal : 0)}, BlockOf(entry, i));
      ++i;
    }
  }

 private:
  /// Hardly any block is referred to more than once.
  static constexpr unsigned kManyReferences = 3;

  static constexpr unsigned kSizeBits = 13;

  struct Entry {
    std::uint16_t slotLow = 0;  ///< file offset / 64; 0 when the block is gone
    std::uint16_t slotHigh = 0;
    std::uint16_t cb : kSizeBits = 0;
    std::uint16_t isInternal : 1 = 0;
    std::uint16_t references : 2 = 0;  ///< kManyReferences: `many_` has their number

    std::uint32_t Slot() const { return std::uint32_t{slotHigh} << 16 | slotLow; }
    bool Exists() const { return Slot() != 0; }
  };
  static_assert(sizeof(Entry) == 6 && kMaxBlockData < 1u << kSizeBits);
  static constexpr std::size_t kMaxBlocks = (std::size_t{1} << 31) - 1;  // so that half of an id fits 32 bits

  static std::uint64_t NumberOf(std::size_t index) { return std::uint64_t{index} * kBidStep; }
  Block BlockOf(const Entry& entry, std::size_t index) const {
    return {std::uint64_t{entry.Slot()} * kSlotSize, entry.cb, ReferencesOf(entry, index)};
  }
  std::uint16_t ReferencesOf(const Entry& entry, std::size_t index) const {
    return entry.references == kManyReferences ? many_.at(index) : entry.references;
  }
  void SetReferences(std::size_t index, std::uint16_t references);

  /// The number of a block that is there.
  std::optional<std::size_t> IndexOf(Bid bid) const;

  std::deque<Entry> entries_{1};  // number 0 names no block
  std::unordered_map<std::size_t, std::uint16_t> many_;
  std::size_t count_ = 0;
};

}  // namespace velmora::ndb
