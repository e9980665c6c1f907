// What the file system says about a path, and what it does with folders and names.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "platform/failure.h"

namespace velmora::platform {

/// The path from the top of its file system, whatever the current folder is. What lies there does not matter.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

/// The place that a path leads to through all links; nothing where it leads to none.
std::optional<std::filesystem::path> RealPath(const std::filesystem::path& path);

/// Whether a file or folder is there. What cannot be looked at is not.
bool Exists(const std::filesystem::path& path);

/// Length of a file in bytes, without opening it.
Result<std::uint64_t> FileSize(const std::filesystem::path& path);

/// Bytes that this user can still write to the file system of a folder; nothing when it does not answer.
std::optional<std::uint64_t> FreeSpace(const std::filesystem::path& folder);

/// Makes a folder with all that are missing above it. One that is there already is no failure.
Result<void> CreateFolders(const std::filesystem::path& path);

/// Gives a file another name on its file system. A file of that name is replaced in one step.
Result<void> Replace(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace velmora::platform
