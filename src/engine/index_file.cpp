#include "engine/index_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

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

platform::Result<IndexFile> IndexFile::Create(const std::filesystem::path& folder, BlockIndex& index) {
  auto file = platform::CreateFile(folder / kIndexFileName, platform::Existing::kReplace);
  if (!file) return tl::unexpected(file.error());
  return IndexFile(std::move(*file), index);
}

void IndexFile::Append(const PlacedBlock& block) {
  chunk_.push_back(block);
  if (chunk_.size() == kChunkRecords) WriteChunk();
}

platform::Result<std::uint64_t> IndexFile::Finish() {
  WriteChunk();
  file_.reset();
  if (!state_) return tl::unexpected(state_.error());
  return written_;
}

void IndexFile::WriteChunk() {
  std::ranges::stable_sort(chunk_, {}, [](const PlacedBlock& block) { return LowBid(block.bid); });
  index_->Add(chunk_);
  if (state_) {
    std::vector<std::byte> bytes(chunk_.size() * kRecordBytes);
    for (std::size_t i = 0; i < chunk_.size(); ++i) Store(bytes.data() + i * kRecordBytes, RecordOf(chunk_[i]));
    state_ = file_->WriteAt(written_ * kRecordBytes, bytes);
    written_ += chunk_.size();
  }
  chunk_.clear();
}

}  // namespace velmora::engine
