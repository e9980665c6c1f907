#include "platform/user_folders.h"

#include <stdlib.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace velmora::platform {

Result<std::filesystem::path> ConfigFolder() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && config[0] == '/') {
    return std::filesystem::path(config) / "velmora";
  }
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
    return std::filesystem::path(home) / ".config" / "velmora";
  }
  return tl::unexpected(Failure{FailureKind::kNotFound, "HOME", 0, "the user has no home folder"});
}

Result<TemporaryFolder> TemporaryFolder::Create() {
  std::error_code error;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
  if (error) return tl::unexpected(Failure{FailureKind::kInputOutput, "temporary folder", 0, error.message()});
  std::string name = (parent / "velmora-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    return tl::unexpected(Failure{FailureKind::kDenied, name, 0, std::generic_category().message(errno)});
  }
  return TemporaryFolder(name);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

}  // namespace velmora::platform
