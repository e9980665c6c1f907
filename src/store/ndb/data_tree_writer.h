// The bytes of a node or of a value on their way to disk.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "store/ndb/block_buffer.h"
#include "store/ndb/block_source.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::ndb {

/// Cuts appended bytes into full data blocks, which go to the store as they fill, and puts the blocks above
/// over them. A tree that is given up before Finish leaves nothing in the store.
class DataTreeWriter {
 public:
  explicit DataTreeWriter(NdbWriter& ndb);
  ~DataTreeWriter();
  DataTreeWriter(const DataTreeWriter&) = delete;
  DataTreeWriter& operator=(const DataTreeWriter&) = delete;

  /// Raises kNotSupported when the tree would grow beyond NdbWriter::kMaxTreeSize; the tree is unchanged then.
  void Append(std::span<const std::byte> bytes);

  /// Appends a block as it stands in a store of this format and encoding. What was appended before must fill its
  /// blocks; behind one that is not full nothing can follow.
  void AppendStored(const StoredData& data);

  /// Bytes appended so far.
  std::uint64_t Size() const { return size_; }

  /// All bytes appended so far, as long as there are not more than one block of them; else empty.
  std::span<const std::byte> Buffered() const;

  /// Writes the rest and the blocks above. Nothing refers to the tree yet: it must be handed to a node, a
  /// sub-node tree or NdbWriter::Discard. The writer is empty again afterwards and can take the next tree.
  [[nodiscard]] DataTree Finish();

  /// Forgets what was appended and frees its blocks.
  void Clear();

 private:
  void WriteBlock(std::span<const std::byte> bytes);
  [[noreturn]] void RaiseTooLarge() const;

  NdbWriter& ndb_;
  BlockBuffer buffer_;
  std::size_t used_ = 0;    ///< bytes in buffer_
  std::uint64_t size_ = 0;  ///< bytes in all
  std::vector<Bid> dataBids_;
};

}  // namespace velmora::ndb
