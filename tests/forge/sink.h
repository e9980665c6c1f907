// Where the bytes of a store go: memory for tests, a file for large stores.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <vector>

#include "forge/bytes.h"

namespace velmora::forge {

class Sink {
 public:
  /// Changes the bytes of a block or page, but not their number, before they are written. It may run on another thread.
  using Form = std::function<void(Bytes& bytes)>;

  virtual ~Sink() = default;

  /// Writes at any offset; a gap reads as zeros. Throws std::runtime_error when the disk refuses or has refused.
  virtual void WriteAt(std::uint64_t offset, Bytes bytes, Form form) = 0;
  void WriteAt(std::uint64_t offset, Bytes bytes) { WriteAt(offset, std::move(bytes), {}); }

  /// Lengthens the store with zeros to at least `size` bytes.
  virtual void GrowTo(std::uint64_t size) = 0;

  /// Sees all written and returns it where it is held in memory. Throws as WriteAt does.
  virtual Bytes Finish() = 0;
};

class MemorySink final : public Sink {
 public:
  using Sink::WriteAt;
  void WriteAt(std::uint64_t offset, Bytes bytes, Form form) override;
  void GrowTo(std::uint64_t size) override;
  Bytes Finish() override { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

/// Forms and writes a megabyte at a time, while the caller makes the next one.
class FileSink final : public Sink {
 public:
  /// Makes or replaces the file. Throws std::runtime_error when it cannot be made.
  explicit FileSink(const std::filesystem::path& path);

  using Sink::WriteAt;
  void WriteAt(std::uint64_t offset, Bytes bytes, Form form) override;
  void GrowTo(std::uint64_t size) override;
  Bytes Finish() override;

 private:
  struct Piece {
    std::uint64_t offset = 0;
    Bytes bytes;
    Form form;
  };
  using Pieces = std::vector<Piece>;

  void HandOver();
  void WriteAll(Pieces pieces);

  std::ofstream file_;
  std::uint64_t position_ = 0;  ///< in the file, of whoever writes
  Pieces waiting_;
  std::size_t waitingBytes_ = 0;
  std::uint64_t size_ = 0;  ///< with all that waits
  std::future<void> underWay_;
};

}  // namespace velmora::forge
