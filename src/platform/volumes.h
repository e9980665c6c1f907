// The volumes that are mounted, and the folders on them.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::platform {

struct Volume {
  std::filesystem::path mountPoint;
  bool removable = false;

  friend bool operator==(const Volume&, const Volume&) = default;
};

/// The volumes of this moment that hold users' files, sorted, each mount point once: none of a type that the system
/// has for itself (proc, sysfs, tmpfs, images of packages and the like), wherever it is mounted, and no single mounted
/// files.
/// Empty when the system does not tell.
std::vector<Volume> MountedVolumes();

/// The same from the text of a mount table (one line a mount, as the kernel lists them to a process).
/// `isRemovable` is asked with a device's "major:minor", `isFolder` with a mount point.
std::vector<Volume> ParseMountTable(std::string_view table, const std::function<bool(std::string_view)>& isRemovable,
                                    const std::function<bool(const std::filesystem::path&)>& isFolder);

struct FolderEntry {
  std::string name;            ///< bytes as the file system holds them
  bool isFolder = false;       ///< a folder of its own, not a link to one
  bool isOtherVolume = false;  ///< a folder at which another volume is mounted
};

/// What a folder holds, "." and ".." left out, in the order of the file system. A folder that cannot be read
/// gives nothing, and what cannot be looked at is left out.
std::vector<FolderEntry> ListFolder(const std::filesystem::path& folder);

}  // namespace velmora::platform
