#include "platform/posix/mount_table.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace velmora::platform {
namespace {

/// The kernel writes blanks and backslashes of a mount point as octal escapes.
std::string Unescaped(std::string_view field) {
  const auto digit = [&](std::size_t at) { return at < field.size() && field[at] >= '0' && field[at] <= '7'; };
  std::string text;
  for (std::size_t at = 0; at < field.size();) {
    if (field[at] == '\\' && digit(at + 1) && digit(at + 2) && digit(at + 3)) {
      text += static_cast<char>((field[at + 1] - '0') * 64 + (field[at + 2] - '0') * 8 + (field[at + 3] - '0'));
      at += 4;
    } else {
      text += field[at++];
    }
  }
  return text;
}

/// What the kernel makes up, what lies in memory, images of packages, and what the firmware reads. The root is there
/// for users whatever it is: of a system that was started from a medium it is an overlay.
bool IsOfTheSystem(const std::filesystem::path& mountPoint, std::string_view type) {
  constexpr std::string_view kTypes[] = {
      "autofs",          "binfmt_misc",   "bpf",       "cgroup",     "cgroup2",    "configfs",
      "debugfs",         "devpts",        "devtmpfs",  "efivarfs",   "erofs",      "fusectl",
      "hugetlbfs",       "mqueue",        "nfsd",      "nsfs",       "overlay",    "proc",
      "pstore",          "ramfs",         "rootfs",    "rpc_pipefs", "securityfs", "selinuxfs",
      "squashfs",        "sysfs",         "tmpfs",     "tracefs",    "aufs",       "fuse.portal",
      "fuse.gvfsd-fuse", "fuse.snapfuse", "fuse.lxcfs"};
  if (mountPoint == "/") return false;
  if (type == "vfat" && mountPoint.filename() == "efi") return true;
  return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

}  // namespace

std::vector<Volume> ParseMountTable(std::string_view table, const std::function<bool(std::string_view)>& isRemovable,
                                    const std::function<bool(const std::filesystem::path&)>& isFolder) {
  struct Mount {
    Volume volume;
    std::string type;
  };
  std::vector<Mount> mounts;
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string id, parent, device, root, mountPoint;
    if (!(fields >> id >> parent >> device >> root >> mountPoint)) continue;
    // Options, then any number of fields, a hyphen, and the type.
    std::string field, type;
    while (fields >> field && field != "-") {
    }
    if (!(fields >> type)) continue;
    Volume volume{Unescaped(mountPoint), isRemovable(device)};
    mounts.push_back({std::move(volume), type});
  }
  // Of two volumes at one place the later one is seen.
  std::reverse(mounts.begin(), mounts.end());
  const auto placeOf = [](const Mount& mount) -> const std::string& { return mount.volume.mountPoint.native(); };
  std::stable_sort(mounts.begin(), mounts.end(),
                   [&](const Mount& a, const Mount& b) { return placeOf(a) < placeOf(b); });
  const auto samePlace = [&](const Mount& a, const Mount& b) { return placeOf(a) == placeOf(b); };
  mounts.erase(std::unique(mounts.begin(), mounts.end(), samePlace), mounts.end());
  std::vector<Volume> volumes;
  for (Mount& mount : mounts) {
    if (IsOfTheSystem(mount.volume.mountPoint, mount.type) || !isFolder(mount.volume.mountPoint)) continue;
    volumes.push_back(std::move(mount.volume));
  }
  return volumes;
}

}  // namespace velmora::platform
