#include "engine/index_file.h"

#include <cstring>
#include <utility>

#include "engine/engine_state.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kRecordBytes = 16;

void Store(std::byte* at, const BlockRecord& record) {
  // The hosts that this runs on are little-endian; platform asserts it.
  std::memcpy(at, &record.bid, 4);
  std::memcpy(at + 4, &record.size, 4);
  std::memcpy(at + 8, &record.offset, 8);
}

}  // namespace

platform::Result<IndexFile> IndexFile::Create(const std::filesystem::path& path, EngineState& state) {
  auto file = platform::CreateFile(path, platform::Existing::kReplace);
  if (!file) return tl::unexpected(file.error());
  state.index.Clear();
  return IndexFile(std::move(*file), state);
}

void IndexFile::Append(const BlockRecord& record) {
  chunk_.push_back(record);
  if (chunk_.size() == kChunkRecords) WriteChunk();
}

platform::Result<std::uint64_t> IndexFile::Finish(RunContext& run) {
  WriteChunk();
  file_.reset();
  if (!state_) return tl::unexpected(state_.error());
  engine_->index.Settle(*engine_, run);
  return written_;
}

void IndexFile::WriteChunk() {
  SortByBid(chunk_);
  engine_->index.Add(chunk_);
  if (state_) {
    std::vector<std::byte> bytes(chunk_.size() * kRecordBytes);
    for (std::size_t i = 0; i < chunk_.size(); ++i) Store(bytes.data() + i * kRecordBytes, chunk_[i]);
    state_ = file_->WriteAt(written_ * kRecordBytes, bytes);
    written_ += chunk_.size();
  }
  chunk_.clear();
}

}  // namespace velmora::engine
