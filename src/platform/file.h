// Files of any size, read and written at 64-bit offsets. All bytes enter and leave the program through
// these two small interfaces, so tests replace them by memory or by a device that fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

#include "platform/failure.h"

namespace velmora::platform {

/// Bytes that can be read at any offset. Safe to read from several threads at once.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Length in bytes.
  virtual std::uint64_t Size() const = 0;

  /// Reads up to `out.size()` bytes at `offset` and returns the number delivered, which is short only at
  /// the end of the source; 0 at or beyond the end.
  virtual Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const = 0;

  /// Asks the system to bring `length` bytes at `offset` into its memory while the caller goes on; what cannot be
  /// read there is no failure. False where it cannot be asked.
  virtual bool Prefetch(std::uint64_t /*offset*/, std::uint64_t /*length*/) const { return false; }
};

/// Bytes that can be written and read back at any offset. One thread changes it at a time, but that another may at the
/// same time write bytes ahead of the end, which nobody else reads or writes.
class ByteStore : public ByteSource {
 public:
  /// Writes all of `bytes` at `offset`; a gap behind the old end reads as zeros. On failure an unknown
  /// part of the range is written.
  virtual Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;

  /// Cuts or lengthens (with zeros) to `size` bytes.
  virtual Result<void> Resize(std::uint64_t size) = 0;

  /// Lengthens to `size` bytes (with zeros) and takes their room on the disk, where there is one that promises it:
  /// what is written below that size later finds it. Leaves a file that is as long already as it is, and so does a
  /// failure.
  virtual Result<void> Reserve(std::uint64_t size) { return size > Size() ? Resize(size) : Result<void>(); }

  /// Hands everything written so far to the disk.
  virtual Result<void> Flush() = 0;
};

/// Opens an existing regular file for reading, leaving other readers alone. A folder gives kDenied.
Result<std::unique_ptr<ByteSource>> OpenForReading(const std::filesystem::path& path);

/// How a source is opened; tests hand in a device that fails.
using SourceOpener = std::function<Result<std::unique_ptr<ByteSource>>(const std::filesystem::path&)>;

/// Opens an existing regular file for reading and writing.
Result<std::unique_ptr<ByteStore>> OpenForWriting(const std::filesystem::path& path);

enum class Existing { kRefuse, kReplace };

/// Makes a file for writing and reading. With kRefuse a file that is there gives kExists.
Result<std::unique_ptr<ByteStore>> CreateFile(const std::filesystem::path& path, Existing existing);

/// Makes a file without a name in the temporary folder of the system; it is gone when it is closed.
Result<std::unique_ptr<ByteStore>> CreateUnnamedFile();

/// Makes one folder whose parent exists. A folder or file that is there gives kExists.
Result<void> CreateFolder(const std::filesystem::path& path);

/// Deletes one file. kNotFound when there is none.
Result<void> DeleteFile(const std::filesystem::path& path);

}  // namespace velmora::platform
