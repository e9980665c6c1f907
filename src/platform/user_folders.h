// Folders of the user and of the moment.
#pragma once

#include <filesystem>
#include <string>

#include "platform/failure.h"

namespace velmora::platform {

/// This program's folder among the user's configuration ("velmora" in XDG_CONFIG_HOME, else in ~/.config; on Windows
/// in AppData\Roaming). It need not exist.
Result<std::filesystem::path> ConfigFolder();

/// The user's data folder (XDG_DATA_HOME, else ~/.local/share; on Windows AppData\Local). It need not exist.
Result<std::filesystem::path> DataFolder();

/// The folder for what lives as long as the user's session (XDG_RUNTIME_DIR, else one of the user's own in
/// the temporary folder, which on Windows is the user's already). It need not exist.
std::filesystem::path RuntimeFolder();

/// The drive that Windows lies on: elsewhere, the drive C of the user's Windows layer (in WINEPREFIX, else in ~/.wine).
/// It need not exist.
Result<std::filesystem::path> WindowsDrive();

/// The user's log-in name, in the form of BytesOfPath; empty when the system does not tell.
std::string UserName();

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
