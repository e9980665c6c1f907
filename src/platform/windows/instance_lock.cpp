#include "platform/instance_lock.h"

#include "platform/file_system.h"
#include "platform/path_text.h"
#include "platform/windows/long_path.h"
#include "platform/windows/system_failure.h"

namespace velmora::platform {
namespace {

constexpr std::intptr_t kNone = -1;

}  // namespace

Result<InstanceLock> InstanceLock::Take(const std::filesystem::path& file) {
  static_cast<void>(CreateFolders(file.parent_path()));
  // It is open to nobody else, so that opening it is taking it.
  const HANDLE handle = ::CreateFileW(LongPath(file).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    const DWORD error = ::GetLastError();
    const FailureKind kind = error == ERROR_SHARING_VIOLATION ? FailureKind::kExists : FailureKind::kDenied;
    return tl::unexpected(Failure{kind, BytesOfPath(file), {}, WordsOf(error)});
  }
  return InstanceLock(reinterpret_cast<std::intptr_t>(handle));
}

InstanceLock::~InstanceLock() {
  if (handle_ != kNone) ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

}  // namespace velmora::platform
