// FirstTableItem.dat: the records of all blocks on disk, made by the block scan and deleted at the end of
// a run.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "engine/block_index.h"
#include "platform/file.h"

namespace velmora::engine {

/// Writes records into the file and, chunk by chunk, into the index. A chunk is sorted once, in memory,
/// before it is written.
class IndexFile {
 public:
  /// Makes the file, replacing an old one. `source` and `layout` serve to fill `index`; all three must
  /// outlive the object.
  static platform::Result<IndexFile> Create(const std::filesystem::path& path, const platform::ByteSource& source,
                                            const PageLayout& layout, BlockIndex& index);

  /// Takes a record, in file order. A failure of the disk is kept for Finish.
  void Append(const BlockRecord& record);

  /// Writes the last chunk, settles the index and closes the file. Gives the number of records written.
  platform::Result<std::uint64_t> Finish();

 private:
  IndexFile(std::unique_ptr<platform::ByteStore> file, const platform::ByteSource& source, const PageLayout& layout,
            BlockIndex& index)
      : file_(std::move(file)), source_(&source), layout_(&layout), index_(&index) {}

  void WriteChunk();

  std::unique_ptr<platform::ByteStore> file_;
  const platform::ByteSource* source_;
  const PageLayout* layout_;
  BlockIndex* index_;
  std::vector<BlockRecord> chunk_;
  std::uint64_t written_ = 0;  ///< records
  platform::Result<void> state_;
};

}  // namespace velmora::engine
