// Where the bytes of a store go: memory for tests, a file for large stores.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>

#include "forge/bytes.h"

namespace velmora::forge {

class Sink {
 public:
  virtual ~Sink() = default;

  /// Writes at any offset; a gap reads as zeros. Throws std::runtime_error when the disk refuses.
  virtual void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;

  /// Lengthens the store with zeros to at least `size` bytes.
  virtual void GrowTo(std::uint64_t size) = 0;

  /// What was written, where it is held in memory; empty otherwise.
  virtual Bytes TakeBytes() { return {}; }
};

class MemorySink final : public Sink {
 public:
  void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  void GrowTo(std::uint64_t size) override;
  Bytes TakeBytes() override { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

class FileSink final : public Sink {
 public:
  /// Makes or replaces the file. Throws std::runtime_error when it cannot be made.
  explicit FileSink(const std::filesystem::path& path);

  void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  void GrowTo(std::uint64_t size) override;

 private:
  std::ofstream file_;
  std::uint64_t position_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace velmora::forge
