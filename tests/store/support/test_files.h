// Files for tests: ones that fail, that remember, that forget; and bytes to fill them with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/memory_file.h"

namespace velmora::test {

/// `count` bytes that look random and are the same in every run.
std::vector<std::byte> Noise(std::size_t count, std::uint32_t seed = 1);

/// Numbers that look random and are the same in every run.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761u + 1) {}
  std::uint32_t operator()() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>(state_ >> 32);
  }

 private:
  std::uint64_t state_;
};

/// Bytes of small numbers.
std::vector<std::byte> Bytes(std::initializer_list<int> values);

/// Passes everything on until so many bytes are written; from then on every change fails, the one that goes
/// over the limit after some of its pages of 4096 bytes are done. A write within one page is done or not.
class FailingFile : public platform::MemoryFile {
 public:
  explicit FailingFile(std::uint64_t bytesLeft) : bytesLeft_(bytesLeft) {}
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  platform::Result<void> Resize(std::uint64_t size) override;
  platform::Result<void> Flush() override;
  bool Failed() const { return failed_; }

 private:
  std::uint64_t bytesLeft_;
  bool failed_ = false;
};

/// A disk of so many bytes, all of it for this file: it is full when the file cannot become longer.
class SmallDisk : public platform::MemoryFile {
 public:
  explicit SmallDisk(std::uint64_t capacity) : capacity_(capacity) {}
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  platform::Result<void> Resize(std::uint64_t size) override;

 private:
  std::uint64_t capacity_;
};

/// Calls `beforeChange` with the file as it stands before every change of it, and after the last with Finish.
class WatchedFile : public platform::MemoryFile {
 public:
  explicit WatchedFile(std::function<void(const std::vector<std::byte>&)> beforeChange)
      : beforeChange_(std::move(beforeChange)) {}
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  platform::Result<void> Resize(std::uint64_t size) override;
  void Finish() { beforeChange_(Bytes()); }

 private:
  std::function<void(const std::vector<std::byte>&)> beforeChange_;
};

/// A file of any length that keeps the bytes of some offsets, by 512, and forgets the others.
class ForgetfulFile : public platform::ByteStore {
 public:
  explicit ForgetfulFile(std::function<bool(std::uint64_t)> isKept) : isKept_(std::move(isKept)) {}
  std::uint64_t Size() const override { return size_; }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  platform::Result<void> Resize(std::uint64_t size) override;
  platform::Result<void> Flush() override { return {}; }

 private:
  using Piece = std::array<std::byte, 512>;
  std::function<bool(std::uint64_t)> isKept_;
  std::uint64_t size_ = 0;
  std::unordered_map<std::uint64_t, Piece> pieces_;  ///< by offset / 512
};

}  // namespace velmora::test
