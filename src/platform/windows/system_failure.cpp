#include "platform/windows/system_failure.h"

#include "platform/path_text.h"
#include "platform/windows/wide_text.h"

namespace velmora::platform {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // not among the names that every header has

}  // namespace

FailureKind KindOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
      return FailureKind::kNotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return FailureKind::kExists;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
    case ERROR_PRIVILEGE_NOT_HELD:
      return FailureKind::kDenied;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
      return FailureKind::kFull;
    default:
      return FailureKind::kInputOutput;
  }
}

std::string WordsOf(DWORD error) {
  wchar_t words[512];
  const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                        words, static_cast<DWORD>(std::size(words)), nullptr);
  std::wstring_view text(words, length);
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.remove_suffix(1);
  return text.empty() ? "error " + std::to_string(error) : NarrowOf(text);
}

tl::unexpected<Failure> Fail(DWORD error, const std::string& object, std::optional<std::uint64_t> offset) {
  return tl::unexpected(Failure{KindOf(error), object, offset, WordsOf(error)});
}

tl::unexpected<Failure> Fail(DWORD error, const std::filesystem::path& path) { return Fail(error, BytesOfPath(path)); }

}  // namespace velmora::platform
