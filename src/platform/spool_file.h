// Bytes on their way from the source to the new store, of unknown length.
#pragma once

#include "platform/memory_file.h"

namespace velmora::platform {

/// Appended to, then read. Up to kMemoryLimit bytes stay in memory; a longer content moves to an unnamed
/// temporary file, so nothing is ever created under a name that a store chose.
class SpoolFile : public ByteSource {
 public:
  static constexpr std::size_t kMemoryLimit = 1 << 20;

  std::uint64_t Size() const override { return Store().Size(); }
  Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    return Store().ReadAt(offset, out);
  }

  Result<void> Append(std::span<const std::byte> bytes) {
    if (file_ == nullptr && Size() + bytes.size() > kMemoryLimit) {
      auto file = CreateUnnamedFile();
      if (!file) return tl::unexpected(file.error());
      if (auto written = (*file)->WriteAt(0, memory_.Bytes()); !written) return written;
      file_ = std::move(*file);
      memory_ = {};
    }
    return file_ != nullptr ? file_->WriteAt(Size(), bytes) : memory_.WriteAt(Size(), bytes);
  }

 private:
  const ByteStore& Store() const { return file_ != nullptr ? *file_ : static_cast<const ByteStore&>(memory_); }

  MemoryFile memory_;
  std::unique_ptr<ByteStore> file_;  ///< once the content has outgrown the memory
};

}  // namespace velmora::platform
