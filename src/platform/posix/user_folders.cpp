#include "platform/user_folders.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>

namespace velmora::platform {

namespace {

/// A folder by an environment variable that holds a full path, else below the home folder.
Result<std::filesystem::path> FolderBy(const char* variable, std::string_view belowHome) {
  if (const char* value = std::getenv(variable); value != nullptr && value[0] == '/') return value;
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
    return std::filesystem::path(home) / belowHome;
  }
  return tl::unexpected(Failure{FailureKind::kNotFound, "HOME", {}, "the user has no home folder"});
}

}  // namespace

Result<std::filesystem::path> ConfigFolder() {
  return FolderBy("XDG_CONFIG_HOME", ".config").map([](const std::filesystem::path& path) { return path / "velmora"; });
}

Result<std::filesystem::path> DataFolder() { return FolderBy("XDG_DATA_HOME", ".local/share"); }

std::filesystem::path RuntimeFolder() {
  if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime != nullptr && runtime[0] == '/') {
    return std::filesystem::path(runtime) / "velmora";
  }
  std::error_code ignored;
  return std::filesystem::temp_directory_path(ignored) / ("velmora-" + std::to_string(::getuid()));
}

Result<std::filesystem::path> WindowsDrive() {
  return FolderBy("WINEPREFIX", ".wine").map([](const std::filesystem::path& path) { return path / "drive_c"; });
}

std::string UserName() {
  const passwd* entry = ::getpwuid(::getuid());
  return entry != nullptr ? entry->pw_name : "";
}

Result<TemporaryFolder> TemporaryFolder::Create() {
  std::error_code error;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
  if (error) return tl::unexpected(Failure{FailureKind::kInputOutput, "temporary folder", {}, error.message()});
  std::string name = (parent / "velmora-XXXXXX").native();
  if (::mkdtemp(name.data()) == nullptr) {
    return tl::unexpected(Failure{FailureKind::kDenied, name, {}, std::generic_category().message(errno)});
  }
  return TemporaryFolder(name);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

}  // namespace velmora::platform
