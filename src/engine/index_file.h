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

/// Writes records into the file and into the index of the run. The file holds them in chunks of 4000, each
/// sorted by `bid` once, in memory, before it is written; across chunks there is no order.
class IndexFile {
 public:
  static constexpr std::uint32_t kChunkRecords = 4000;

  /// Makes the file, replacing an old one, and clears the index of the state. The state must outlive the
  /// object.
  static platform::Result<IndexFile> Create(const std::filesystem::path& path, EngineState& state);

  /// Takes a record, in file order. A failure of the disk is kept for Finish.
  void Append(const BlockRecord& record);

  /// Writes the last chunk, closes the file and settles the index. Gives the number of records written.
  platform::Result<std::uint64_t> Finish(RunContext& run);

 private:
  IndexFile(std::unique_ptr<platform::ByteStore> file, EngineState& state) : file_(std::move(file)), engine_(&state) {}

  void WriteChunk();

  std::unique_ptr<platform::ByteStore> file_;
  EngineState* engine_;
  std::vector<BlockRecord> chunk_;
  std::uint64_t written_ = 0;  ///< records
  platform::Result<void> state_;
};

}  // namespace velmora::engine
