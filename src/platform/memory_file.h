// A ByteStore in memory.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/file.h"

namespace velmora::platform {

class MemoryFile : public ByteStore {
 public:
  MemoryFile() = default;
  explicit MemoryFile(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

  std::uint64_t Size() const override { return bytes_.size(); }

  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset >= bytes_.size()) return std::size_t{0};
    const std::size_t length = std::min<std::uint64_t>(out.size(), bytes_.size() - offset);
    if (length != 0) std::memcpy(out.data(), bytes_.data() + offset, length);
    return length;
  }

  Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    if (bytes.empty()) return {};
    if (offset + bytes.size() > bytes_.size()) bytes_.resize(offset + bytes.size());
    std::memcpy(bytes_.data() + offset, bytes.data(), bytes.size());
    return {};
  }

  Result<void> Resize(std::uint64_t size) override {
    bytes_.resize(size);
    return {};
  }

  Result<void> Flush() override { return {}; }

  const std::vector<std::byte>& Bytes() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

}  // namespace velmora::platform
