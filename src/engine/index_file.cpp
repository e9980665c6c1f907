#include "engine/index_file.h"

#include <algorithm>
#include <utility>

#include "store/format/little_endian.h"

namespace velmora::engine {
namespace {

constexpr std::size_t kRecordBytes = 16;

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
    std::vector<std::byte> bytes;
    bytes.reserve(chunk_.size() * kRecordBytes);
    for (const PlacedBlock& block : chunk_) {
      velmora::Append(bytes, LowBid(block.bid));
      velmora::Append(bytes, block.size);
      velmora::Append(bytes, block.offset);
    }
    state_ = file_->WriteAt(written_ * kRecordBytes, bytes);
    written_ += chunk_.size();
  }
  chunk_.clear();
}

}  // namespace velmora::engine
