#include "platform/memory_file.h"

#include <algorithm>
#include <cstring>

namespace velmora::platform {

Result<std::size_t> MemoryFile::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (offset >= bytes_.size()) return std::size_t{0};
  const std::size_t length = std::min<std::uint64_t>(out.size(), bytes_.size() - offset);
  if (length != 0) std::memcpy(out.data(), bytes_.data() + offset, length);
  return length;
}

Result<void> MemoryFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  if (bytes.empty()) return {};
  if (offset + bytes.size() > bytes_.size()) bytes_.resize(offset + bytes.size());
  std::memcpy(bytes_.data() + offset, bytes.data(), bytes.size());
  return {};
}

Result<void> MemoryFile::Resize(std::uint64_t size) {
  bytes_.resize(size);
  return {};
}

}  // namespace velmora::platform
