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

inline constexpr const char* kIndexFileName = "FirstTableItem.dat";

/// Writes records into the file and takes them into an index. The file holds them in chunks of 4000, each
/// sorted by `bid` once, in memory, before it is written; across chunks there is no order.
class IndexFile {
 public:
  static constexpr std::uint32_t kChunkRecords = 4000;

  /// Makes the file in that folder, replacing an old one. The index must outlive the object.
  [[nodiscard]] static platform::Result<IndexFile> Create(const std::filesystem::path& folder, BlockIndex& index);

  /// Takes a block, in file order. A failure of the disk is kept for Finish.
  void Append(const PlacedBlock& block);

  /// Writes the last chunk and closes the file. Gives the number of records written.
  [[nodiscard]] platform::Result<std::uint64_t> Finish();

 private:
  IndexFile(std::unique_ptr<platform::ByteStore> file, BlockIndex& index) : file_(std::move(file)), index_(&index) {}

  void WriteChunk();

  std::unique_ptr<platform::ByteStore> file_;
  BlockIndex* index_;
  std::vector<PlacedBlock> chunk_;
  std::uint64_t written_ = 0;  ///< records
  platform::Result<void> state_;
};

}  // namespace velmora::engine
