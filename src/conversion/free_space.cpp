#include "conversion/free_space.h"

#include <filesystem>
#include <system_error>

#include "platform/file.h"

namespace velmora::conversion {
namespace {

/// Bytes that this user can still write to the file system of `path`, or to that of its nearest folder that exists.
/// An empty path stands for the current folder; a file system that does not answer has no room.
std::uint64_t FreeSpace(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::absolute(path.empty() ? "." : path, error);
  while (!error && !std::filesystem::exists(folder, error) && folder.has_relative_path()) {
    error.clear();
    folder = folder.parent_path();
  }
  const std::filesystem::space_info space = std::filesystem::space(folder, error);
  return error ? 0 : space.available;
}

}  // namespace

bool IsEnoughSpace(std::uint64_t sourceBytes, std::uint64_t freeBytes) {
  return (sourceBytes >> 20) < static_cast<std::uint32_t>(freeBytes >> 20);
}

bool HasEnoughFreeSpace(text::TextView destination, text::TextView sourcePath) {
  const auto source = platform::OpenForReading(text::ToFileName(sourcePath));
  return IsEnoughSpace(source ? (*source)->Size() : 0, FreeSpace(text::ToFileName(destination)));
}

}  // namespace velmora::conversion
