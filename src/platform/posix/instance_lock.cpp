#include "platform/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace velmora::platform {

Result<InstanceLock> InstanceLock::Take(const std::filesystem::path& file) {
  const auto failed = [&](FailureKind kind, int error) {
    return tl::unexpected(Failure{kind, file.native(), {}, std::generic_category().message(error)});
  };
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  const int handle = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (handle < 0) return failed(FailureKind::kDenied, errno);
  InstanceLock lock(handle);
  if (::flock(handle, LOCK_EX | LOCK_NB) != 0) {
    const int error = errno;
    return failed(error == EWOULDBLOCK ? FailureKind::kExists : FailureKind::kInputOutput, error);
  }
  return lock;
}

InstanceLock::~InstanceLock() {
  if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

}  // namespace velmora::platform
