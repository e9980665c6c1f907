#include "platform/spool_file.h"

#include <algorithm>
#include <cstring>

namespace velmora::platform {

Result<std::size_t> SpoolFile::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (file_ != nullptr) return file_->ReadAt(offset, out);
  if (offset >= size_) return std::size_t{0};
  const std::size_t length = std::min<std::uint64_t>(out.size(), size_ - offset);
  if (length != 0) std::memcpy(out.data(), memory_.data() + offset, length);
  return length;
}

Result<void> SpoolFile::Append(std::span<const std::byte> bytes) {
  if (file_ == nullptr && size_ + bytes.size() > kMemoryLimit) {
    auto file = CreateUnnamedFile();
    if (!file) return tl::unexpected(file.error());
    if (auto written = (*file)->WriteAt(0, memory_); !written) return written;
    file_ = std::move(*file);
    memory_ = {};
  }
  if (file_ != nullptr) {
    if (auto written = file_->WriteAt(size_, bytes); !written) return written;
  } else {
    memory_.insert(memory_.end(), bytes.begin(), bytes.end());
  }
  size_ += bytes.size();
  return {};
}

}  // namespace velmora::platform
