#include "platform/file_system.h"

#include <system_error>

#include "platform/posix/system_failure.h"

namespace velmora::platform {

namespace fs = std::filesystem;

fs::path AbsolutePath(const fs::path& path) {
  std::error_code error;
  fs::path full = fs::absolute(path, error);
  return error ? path : full;
}

std::optional<fs::path> RealPath(const fs::path& path) {
  std::error_code error;
  fs::path place = fs::canonical(path, error);
  return error ? std::nullopt : std::optional(std::move(place));
}

bool Exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

Result<std::uint64_t> FileSize(const fs::path& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error) return Fail(error.value(), path);
  return size;
}

std::optional<std::uint64_t> FreeSpace(const fs::path& folder) {
  std::error_code error;
  const fs::space_info space = fs::space(folder, error);
  return error ? std::nullopt : std::optional<std::uint64_t>(space.available);
}

Result<void> CreateFolders(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) return Fail(error.value(), path);
  return {};
}

Result<void> Replace(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  if (error) return Fail(error.value(), to);
  return {};
}

}  // namespace velmora::platform
