// The bytes of a node or of a value, read back.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

#include "store/ndb/block_source.h"
#include "store/ndb/faults.h"

namespace velmora::ndb {

/// A data tree of any generation, opened for reading: its data blocks in order, and its bytes at any offset. Holds the
/// ids of the data blocks (8 bytes each, no more than the blocks that were read name) and the block read last.
///
/// Tolerant, a data block that is lost reads as zeros, so that what follows stays in its place.
class DataTreeReader {
 public:
  /// An empty tree.
  DataTreeReader() = default;

  /// kNoBid gives an empty tree. `source` and `faults` must outlive the reader. Raises kCorrupt when a block above the
  /// data is no XBLOCK or XXBLOCK, its numbers do not fit, or a block is named twice, which would make much of little;
  /// a tolerant reader fails for the root alone.
  [[nodiscard]] static DataTreeReader Open(const BlockSource& source, Bid bid, Faults* faults = nullptr);

  /// Bytes in all, as the tree's root says.
  std::uint64_t Size() const { return size_; }

  std::size_t BlockCount() const { return dataBids_.size(); }

  /// The id of data block `index`; kNoBid of one whose list is lost, or that is not there.
  Bid BidOf(std::size_t index) const { return index < dataBids_.size() ? dataBids_[index] : kNoBid; }

  /// Content of data block `index` (< BlockCount()), valid until the next call on this reader. Raises the failure where
  /// it is lost.
  [[nodiscard]] std::span<const std::byte> Block(std::size_t index);

  /// The same, given away.
  [[nodiscard]] std::vector<std::byte> TakeBlock(std::size_t index);

  /// Why data block `index` is lost; nothing of one that can be read.
  [[nodiscard]] const std::optional<Failure>& WhyLost(std::size_t index);

  /// Reads up to `out.size()` bytes from offset `from` on and returns the number delivered, which is short only at
  /// the end of the blocks. Raises kCorrupt when a data block other than the last is not full, or they end elsewhere
  /// than the tree's root says.
  [[nodiscard]] std::size_t ReadAt(std::uint64_t from, std::span<std::byte> out);

  /// The whole tree; raises kNotSupported when it is larger than `limit` bytes.
  [[nodiscard]] std::vector<std::byte> ReadAll(std::uint64_t limit);

 private:
  using Seen = std::unordered_set<Bid>;
  void AddBlocksOf(Bid bid, std::span<const std::byte> content, Seen& seen);
  void AddListsOf(Bid bid, std::span<const std::byte> content, Seen& seen);
  [[nodiscard]] std::span<const std::byte> BlockOrZeros(std::size_t index);
  void CheckEnd(std::uint64_t end) const;

  const BlockSource* source_ = nullptr;
  Faults* faults_ = nullptr;
  std::uint64_t size_ = 0;
  std::vector<Bid> dataBids_;
  std::vector<std::byte> block_;
  std::size_t blockIndex_ = SIZE_MAX;    ///< which data block was read last
  std::optional<Failure> blockFailure_;  ///< why `block_` does not hold it
};

}  // namespace velmora::ndb
