// A file that a store closes and a test reads on.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "platform/file.h"

namespace velmora::test {

/// Hands everything on to a file that is shared, so that its bytes outlive the store that was made in it; and one call
/// at a time, so that a thread may write while another lengthens the file, as with files of the system.
class SharedFile : public platform::ByteStore {
 public:
  explicit SharedFile(std::shared_ptr<platform::ByteStore> file) : file_(std::move(file)) {}

  std::uint64_t Size() const override {
    const std::lock_guard lock(mutex_);
    return file_->Size();
  }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    const std::lock_guard lock(mutex_);
    return file_->ReadAt(offset, out);
  }
  platform::Result<void> WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
    const std::lock_guard lock(mutex_);
    return file_->WriteAt(offset, bytes);
  }
  platform::Result<void> Resize(std::uint64_t size) override {
    const std::lock_guard lock(mutex_);
    return file_->Resize(size);
  }
  platform::Result<void> Flush() override {
    const std::lock_guard lock(mutex_);
    return file_->Flush();
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<platform::ByteStore> file_;
};

}  // namespace velmora::test
