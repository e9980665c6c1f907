// The blocks of several objects, read together ahead of whoever copies them: in the order of the file and in large
// pieces, so that a disk which has to seek does so seldom, and by whichever thread has time.
//
// What belongs to a message was mostly written with it. So what lies between messages that follow one another is read
// along with their own blocks, before anybody knows that their lists name it; where they stand too far apart for that,
// it is left.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "engine/evidence/bid_set.h"
#include "engine/pieces_read.h"
#include "engine/proven_store.h"
#include "store/format/block.h"

namespace velmora::engine {

/// Constant once it is made. A block that is not among them is no loss: it is read from the store when it is needed.
class BlocksAhead {
 public:
  /// Bytes of the file that are read and kept, and as many of what they inflate to; a little more where pieces that are
  /// read have gaps.
  static constexpr std::size_t kMostBytes = std::size_t{2} << 20;

  /// Reads the blocks of messages: their properties, recipients, attachments and what these embed. With `keepStored`
  /// long values stay encoded for FindStored, all else is decoded. Raises nothing.
  BlocksAhead(const ProvenStore& store, std::span<const ndb::NodeTrees> messages, bool keepStored);

  /// Replaces `out` by the content of a block; false when it is not among them.
  [[nodiscard]] bool Find(Bid bid, std::vector<std::byte>& out) const;

  /// A block whose content stayed encoded.
  std::optional<StoredData> FindStored(Bid bid) const;

  /// Whether blocks were left out for want of room.
  bool IsFull() const { return isFull_; }

  /// Whether more messages of the kind would mostly have had room.
  bool HasRoom() const { return !isFull_ && bytesLeft_ > kMostBytes / 4; }

 private:
  /// What a block belongs to.
  enum class Part : std::uint8_t { kObject, kSubnodes, kValue };
  struct Wanted {
    Bid bid{};
    Part part = Part::kObject;
  };
  struct Block {
    Bid bid{};
    std::span<const std::byte> bytes;
    bool isEncoded = false;
    std::uint32_t crc = 0;
  };
  struct Placed {
    FoundBlock block;
    Part part = Part::kObject;
  };

  static std::uint64_t Begin(const Placed& one) { return one.block.offset; }
  std::uint64_t End(const Placed& one) const { return Begin(one) + BlockSizeOnDisk(one.block.cb, store_.Format()); }

  void Ask(Bid bid, Part part, std::vector<Wanted>& wanted);
  std::vector<Placed> Place(std::span<const Wanted> wanted);
  void Read(std::span<const Placed> placed, bool withWhatLiesBetween);
  std::ptrdiff_t TakeGaps(std::span<const Placed> blocks);
  void Take(const Placed& placed);
  std::optional<std::span<std::byte>> RoomFor(std::size_t size);
  void AskBelow(const Wanted& above, std::vector<Wanted>& below);
  const Block* Among(Bid bid) const;

  const ProvenStore& store_;
  bool keepStored_;
  std::size_t bytesLeft_ = kMostBytes;
  std::size_t inflatedLeft_ = kMostBytes;
  bool isFull_ = false;
  BidSet asked_;
  std::vector<Block> blocks_;                           ///< by ascending id
  PiecesRead pieces_;                                   ///< memory of the blocks
  std::vector<std::unique_ptr<std::byte[]>> inflated_;  ///< likewise, where blocks are packed
  std::span<std::byte> room_;                           ///< of the last of these, what is left
};

}  // namespace velmora::engine
