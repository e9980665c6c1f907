#include "platform/volumes.h"

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "platform/posix/mount_table.h"

namespace velmora::platform {
namespace {

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
    entries.push_back({entry->path().filename(), isFolder, isFolder && info.st_dev != own.st_dev});
  }
  return entries;
}

}  // namespace velmora::platform
