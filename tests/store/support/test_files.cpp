#include "store/support/test_files.h"

#include <algorithm>

namespace velmora::test {

using platform::Failure;
using platform::FailureKind;
using platform::Result;

std::vector<std::byte> Noise(std::size_t count, std::uint32_t seed) {
  Random random(seed);
  std::vector<std::byte> bytes(count);
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (i % 4 == 0) word = random();
    bytes[i] = static_cast<std::byte>(word >> 8 * (i % 4));
  }
  return bytes;
}

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
  return bytes;
}

Result<void> FailingFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  if (!failed_ && bytes.size() <= bytesLeft_) {
    bytesLeft_ -= bytes.size();
    return MemoryFile::WriteAt(offset, bytes);
  }
  if (!failed_) {
    const std::uint64_t pageEnd = (offset + bytesLeft_) / 4096 * 4096;
    if (pageEnd > offset) static_cast<void>(MemoryFile::WriteAt(offset, bytes.first(pageEnd - offset)));
  }
  failed_ = true;
  return tl::unexpected(Failure{FailureKind::kFull, "test file", offset, "no space left"});
}

Result<void> FailingFile::Resize(std::uint64_t size) {
  if (failed_) return tl::unexpected(Failure{FailureKind::kFull, "test file", size, "no space left"});
  return MemoryFile::Resize(size);
}

Result<void> FailingFile::Flush() {
  if (failed_) return tl::unexpected(Failure{FailureKind::kFull, "test file", 0, "no space left"});
  return {};
}

Result<void> SmallDisk::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  if (auto fits = Resize(std::max(Size(), offset + bytes.size())); !fits) return fits;
  return MemoryFile::WriteAt(offset, bytes);
}

Result<void> SmallDisk::Resize(std::uint64_t size) {
  if (size > capacity_) return tl::unexpected(Failure{FailureKind::kFull, "small disk", size, "no space left"});
  return MemoryFile::Resize(size);
}

Result<void> WatchedFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  beforeChange_(Bytes());
  return MemoryFile::WriteAt(offset, bytes);
}

Result<void> WatchedFile::Resize(std::uint64_t size) {
  beforeChange_(Bytes());
  return MemoryFile::Resize(size);
}

Result<std::size_t> ForgetfulFile::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (offset >= size_) return std::size_t{0};
  const std::size_t length = std::min<std::uint64_t>(out.size(), size_ - offset);
  for (std::size_t done = 0; done < length;) {
    const std::uint64_t within = (offset + done) % sizeof(Piece);
    const std::size_t count = std::min<std::size_t>(sizeof(Piece) - within, length - done);
    const auto piece = pieces_.find((offset + done) / sizeof(Piece));
    if (piece == pieces_.end()) {
      std::fill_n(out.begin() + static_cast<std::ptrdiff_t>(done), count, std::byte{0});
    } else {
      std::copy_n(piece->second.begin() + static_cast<std::ptrdiff_t>(within), count,
                  out.begin() + static_cast<std::ptrdiff_t>(done));
    }
    done += count;
  }
  return length;
}

Result<void> ForgetfulFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
  size_ = std::max<std::uint64_t>(size_, offset + bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::uint64_t at = offset + i;
    const std::uint64_t within = at % sizeof(Piece);
    const std::size_t count = std::min<std::size_t>(sizeof(Piece) - within, bytes.size() - i);
    if (isKept_(at)) {
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(i), count,
                  pieces_[at / sizeof(Piece)].begin() + static_cast<std::ptrdiff_t>(within));
    }
    i += count;
  }
  return {};
}

Result<void> ForgetfulFile::Resize(std::uint64_t size) {
  size_ = size;
  return {};
}

}  // namespace velmora::test
