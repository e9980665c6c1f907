// All blocks of a store that is being written, 8 bytes each: the block tree before it becomes pages.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "store/format/block.h"
#include "store/format/ids.h"

namespace velmora::ndb {

/// Block ids are handed out in a row, so the number of a block is the place of its entry.
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
    for (std::size_t i = 1; i < entries_.size(); ++i) {
      const Entry& entry = entries_[i];
      if (entry.slot != 0) visit(BidOf(i), BlockOf(entry));
    }
  }

 private:
  struct Entry {
    std::uint32_t slot = 0;  ///< file offset / 64; 0 when the block is gone
    std::uint16_t cbAndKind = 0;
    std::uint16_t references = 0;
  };
  static_assert(sizeof(Entry) == 8);
  static constexpr std::uint16_t kInternalFlag = 0x8000;
  static constexpr std::size_t kMaxBlocks = (std::size_t{1} << 31) - 1;  // so that half of an id fits 32 bits

  static std::uint64_t NumberOf(std::size_t index) { return std::uint64_t{index} * kBidStep; }
  Bid BidOf(std::size_t index) const {
    return Bid{NumberOf(index) | ((entries_[index].cbAndKind & kInternalFlag) != 0 ? kBidInternal : 0)};
  }
  static Block BlockOf(const Entry& entry) {
    return {std::uint64_t{entry.slot} * kSlotSize, static_cast<std::uint16_t>(entry.cbAndKind & ~kInternalFlag),
            entry.references};
  }
  const Entry* EntryOf(Bid bid) const;
  Entry* EntryOf(Bid bid) { return const_cast<Entry*>(static_cast<const BlockTable*>(this)->EntryOf(bid)); }

  std::vector<Entry> entries_{1};  // number 0 names no block
  std::size_t count_ = 0;
};

}  // namespace velmora::ndb
