// A ByteStore in memory, for tests and small stores.
#pragma once

#include <vector>

#include "platform/file.h"

namespace velmora::platform {

class MemoryFile : public ByteStore {
 public:
  MemoryFile() = default;
  explicit MemoryFile(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

  std::uint64_t Size() const override { return bytes_.size(); }
  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;
  Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
  Result<void> Resize(std::uint64_t size) override;
  Result<void> Flush() override { return {}; }

  const std::vector<std::byte>& Bytes() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

}  // namespace velmora::platform
