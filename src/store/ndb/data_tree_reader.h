// The bytes of a node or of a value, read back.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "store/ndb/block_source.h"

namespace velmora::ndb {

/// A data tree opened for reading: its data blocks in order, and its bytes at any offset. Holds the ids of
/// the data blocks (8 bytes each, at most 1021 x 1021) and the block read last.
class DataTreeReader {
 public:
  /// An empty tree.
  DataTreeReader() = default;

  /// `bid` 0 gives an empty tree. `source` must outlive the reader. kCorrupt when a block above the data is
  /// no XBLOCK or XXBLOCK or its numbers do not fit.
  static Result<DataTreeReader> Open(const BlockSource& source, Bid bid);

  /// Bytes in all, as the tree's root says.
  std::uint64_t Size() const { return size_; }

  std::size_t BlockCount() const { return dataBids_.size(); }

  /// Content of data block `index` (< BlockCount()), valid until the next call on this reader.
  Result<std::span<const std::byte>> Block(std::size_t index);

  /// Reads up to `out.size()` bytes at `offset` and returns the number delivered, which is short only at
  /// the end of the tree. kCorrupt when a data block other than the last is not full.
  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out);

  /// The whole tree; kNotSupported when it is larger than `limit` bytes.
  Result<std::vector<std::byte>> ReadAll(std::uint64_t limit);

 private:
  const BlockSource* source_ = nullptr;
  std::uint64_t size_ = 0;
  std::vector<Bid> dataBids_;
  std::vector<std::byte> block_;
  std::size_t blockIndex_ = SIZE_MAX;  ///< which data block `block_` holds
};

}  // namespace velmora::ndb
