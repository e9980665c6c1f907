#include "platform/posix/system_failure.h"

#include <cerrno>
#include <system_error>

namespace velmora::platform {

FailureKind KindOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return FailureKind::kNotFound;
    case EEXIST:
      return FailureKind::kExists;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return FailureKind::kDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FailureKind::kFull;
    default:
      return FailureKind::kInputOutput;
  }
}

tl::unexpected<Failure> Fail(int error, const std::string& object, std::optional<std::uint64_t> offset) {
  return tl::unexpected(Failure{KindOf(error), object, offset, std::generic_category().message(error)});
}

tl::unexpected<Failure> Fail(int error, const std::filesystem::path& path) { return Fail(error, path.native()); }

}  // namespace velmora::platform
