#include "platform/disk_space.h"

#include <system_error>

namespace velmora::platform {

Result<std::uint64_t> FreeSpace(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::absolute(path.empty() ? "." : path, error);
  while (!error && !std::filesystem::exists(folder, error) && folder.has_relative_path()) {
    error.clear();
    folder = folder.parent_path();
  }
  error.clear();
  const std::filesystem::space_info space = std::filesystem::space(folder, error);
  if (error) return tl::unexpected(Failure{FailureKind::kInputOutput, path.string(), 0, error.message()});
  return space.available;
}

}  // namespace velmora::platform
