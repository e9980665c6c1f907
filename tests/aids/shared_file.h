// A file that a store closes and a test reads on.
#pragma once

#include <memory>
#include <utility>

#include "platform/file.h"

namespace velmora::test {

/// Hands everything on to a file that is shared, so that its bytes outlive the store that was made in it.
class SharedFile : public platform::ByteStore {
 public:
  explicit SharedFile(std::shared_ptr<platform::ByteStore> file) : file_(std::move(file)) {}

  std::uint64_t Size() const override { return file_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    return file_->ReadAt(offset, out);
  }
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    return file_->WriteAt(offset, bytes);
  }
  platform::Result<void> Resize(std::uint64_t size) override { return file_->Resize(size); }
  platform::Result<void> Flush() override { return file_->Flush(); }

 private:
  std::shared_ptr<platform::ByteStore> file_;
};

}  // namespace velmora::test
