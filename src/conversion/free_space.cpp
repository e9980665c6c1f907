#include "conversion/free_space.h"

#include <filesystem>

#include "platform/file.h"
#include "platform/file_system.h"
#include "platform/path_text.h"

namespace velmora::conversion {
namespace {

/// Bytes that this user can still write to the file system of `path`, or to that of its nearest folder that exists.
/// An empty path stands for the current folder; a file system that does not answer has no room.
std::uint64_t FreeSpaceAt(const std::filesystem::path& path) {
  std::filesystem::path folder = platform::AbsolutePath(path.empty() ? "." : path);
  while (!platform::Exists(folder) && folder.has_relative_path()) folder = folder.parent_path();
  return platform::FreeSpace(folder).value_or(0);
}

}  // namespace

bool IsEnoughSpace(std::uint64_t sourceBytes, std::uint64_t freeBytes) {
  return (sourceBytes >> 20) < static_cast<std::uint32_t>(freeBytes >> 20);
}

bool HasEnoughFreeSpace(text::TextView destination, text::TextView sourcePath) {
  const auto source = platform::OpenForReading(platform::PathOf(sourcePath));
  return IsEnoughSpace(source ? (*source)->Size() : 0, FreeSpaceAt(platform::PathOf(destination)));
}

}  // namespace velmora::conversion
