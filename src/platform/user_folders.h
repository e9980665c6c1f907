// Folders of the user and of the moment.
#pragma once

#include <filesystem>

#include "platform/failure.h"

namespace velmora::platform {

/// This program's folder among the user's configuration ("velmora" in XDG_CONFIG_HOME, else in ~/.config).
/// It need not exist.
Result<std::filesystem::path> ConfigFolder();

/// A new empty folder in the system's temporary folder; it goes, with all that it holds, with its holder.
class TemporaryFolder {
 public:
  static Result<TemporaryFolder> Create();
  ~TemporaryFolder();
  TemporaryFolder(TemporaryFolder&& other) noexcept : path_(std::move(other.path_)) { other.path_.clear(); }
  TemporaryFolder& operator=(TemporaryFolder&&) = delete;

  const std::filesystem::path& Path() const { return path_; }

 private:
  explicit TemporaryFolder(std::filesystem::path path) : path_(std::move(path)) {}
  std::filesystem::path path_;
};

}  // namespace velmora::platform
