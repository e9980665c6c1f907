// The volumes that are mounted, and the folders on them.
#pragma once

#include <filesystem>
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

struct FolderEntry {
  std::filesystem::path name;
  bool isFolder = false;       ///< a folder of its own, not a link to one
  bool isOtherVolume = false;  ///< a folder at which another volume is mounted
};

/// What a folder holds, "." and ".." left out, in the order of the file system. A folder that cannot be read
/// gives nothing, and what cannot be looked at is left out.
std::vector<FolderEntry> ListFolder(const std::filesystem::path& folder);

}  // namespace velmora::platform
