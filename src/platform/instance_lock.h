// One copy of the program at a time.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/failure.h"

namespace velmora::platform {

/// A lock that one process of the user holds and that goes with its process, however that ends.
class InstanceLock {
 public:
  /// Takes the lock that the file stands for, making the file where it is missing. kExists: another holder
  /// has it.
  static Result<InstanceLock> Take(const std::filesystem::path& file);

  ~InstanceLock();
  InstanceLock(InstanceLock&& other) noexcept : handle_(other.handle_) { other.handle_ = -1; }
  InstanceLock& operator=(InstanceLock&&) = delete;

 private:
  explicit InstanceLock(std::intptr_t handle) : handle_(handle) {}
  std::intptr_t handle_;  ///< as the system has it
};

}  // namespace velmora::platform
