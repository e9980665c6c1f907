// Bytes on their way from the source to the new store, of unknown length.
#pragma once

#include <vector>

#include "platform/file.h"

namespace velmora::platform {

/// Appended to, then read. Up to kMemoryLimit bytes stay in memory; a longer content moves to an unnamed
/// temporary file, so nothing is ever created under a name that a store chose.
class SpoolFile : public ByteSource {
 public:
  static constexpr std::size_t kMemoryLimit = 1 << 20;

  std::uint64_t Size() const override { return size_; }
  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;

  Result<void> Append(std::span<const std::byte> bytes);

 private:
  std::uint64_t size_ = 0;
  std::vector<std::byte> memory_;
  std::unique_ptr<ByteStore> file_;
};

}  // namespace velmora::platform
