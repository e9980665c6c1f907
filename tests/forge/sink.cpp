#include "forge/sink.h"

#include <algorithm>
#include <stdexcept>

namespace velmora::forge {

void MemorySink::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  GrowTo(offset + bytes.size());
  std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
}

void MemorySink::GrowTo(std::uint64_t size) {
  if (bytes_.size() < size) bytes_.resize(size);
}

FileSink::FileSink(const std::filesystem::path& path) : file_(path, std::ios::binary | std::ios::trunc) {
  if (!file_) throw std::runtime_error("forge: cannot make " + path.string());
}

void FileSink::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  // A seek empties the stream's buffer, so it is left out where the writes follow one another.
  if (offset != position_) file_.seekp(static_cast<std::streamoff>(offset));
  file_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file_) throw std::runtime_error("forge: a write failed");
  position_ = offset + bytes.size();
  size_ = std::max(size_, position_);
}

void FileSink::GrowTo(std::uint64_t size) {
  constexpr std::byte kZero{0};
  if (size_ < size) WriteAt(size - 1, {&kZero, 1});
}

}  // namespace velmora::forge
