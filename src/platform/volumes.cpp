#include "platform/volumes.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
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

bool IsSystemTree(std::string_view mountPoint) {
  constexpr std::string_view kTrees[] = {"/proc", "/sys", "/dev", "/run"};
  return std::any_of(std::begin(kTrees), std::end(kTrees), [&](std::string_view tree) {
    return mountPoint == tree || (mountPoint.starts_with(tree) && mountPoint[tree.size()] == '/');
  });
}

/// A partition says nothing itself; its disk, the folder above it, does.
bool IsRemovableDevice(std::string_view device) {
  const std::filesystem::path block = std::filesystem::path("/sys/dev/block") / device;
  for (const std::filesystem::path& file : {block / "removable", block / ".." / "removable"}) {
    char mark = 0;
    if (std::ifstream(file) >> mark) return mark == '1';
  }
  return false;
}

}  // namespace

std::vector<Volume> ParseMountTable(std::string_view table, const std::function<bool(std::string_view)>& isRemovable,
                                    const std::function<bool(const std::filesystem::path&)>& isFolder) {
  std::vector<Volume> volumes;
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string id, parent, device, root, mountPoint;
    if (!(fields >> id >> parent >> device >> root >> mountPoint)) continue;
    Volume volume{Unescaped(mountPoint), isRemovable(device)};
    if (IsSystemTree(volume.mountPoint.native()) && !volume.removable) continue;
    if (isFolder(volume.mountPoint)) volumes.push_back(std::move(volume));
  }
  // Of two volumes at one place the later one is seen.
  std::reverse(volumes.begin(), volumes.end());
  std::stable_sort(volumes.begin(), volumes.end(),
                   [](const Volume& a, const Volume& b) { return a.mountPoint.native() < b.mountPoint.native(); });
  const auto samePlace = [](const Volume& a, const Volume& b) { return a.mountPoint == b.mountPoint; };
  volumes.erase(std::unique(volumes.begin(), volumes.end(), samePlace), volumes.end());
  return volumes;
}

std::vector<Volume> MountedVolumes() {
  std::ifstream file("/proc/self/mountinfo");
  const std::string table{std::istreambuf_iterator<char>(file), {}};
  return ParseMountTable(table, IsRemovableDevice, [](const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
  });
}

std::vector<FolderEntry> ListFolder(const std::filesystem::path& folder) {
  std::vector<FolderEntry> entries;
  struct stat own {};
  if (::lstat(folder.c_str(), &own) != 0) return entries;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    struct stat info {};
    if (::lstat(entry->path().c_str(), &info) != 0) continue;
    const bool isFolder = S_ISDIR(info.st_mode);
    // A link counts by what it leads to, so that a link to a file is found; a link to a folder is none.
    if (S_ISLNK(info.st_mode) && (::stat(entry->path().c_str(), &info) != 0 || S_ISDIR(info.st_mode))) continue;
    entries.push_back({entry->path().filename().native(), isFolder, isFolder && info.st_dev != own.st_dev});
  }
  return entries;
}

}  // namespace velmora::platform
