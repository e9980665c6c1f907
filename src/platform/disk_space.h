// Room on a file system.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/failure.h"

namespace velmora::platform {

/// Bytes that this user can still write to the file system of `path`, or to that of its nearest folder that
/// exists. An empty path stands for the current folder.
Result<std::uint64_t> FreeSpace(const std::filesystem::path& path);

}  // namespace velmora::platform
