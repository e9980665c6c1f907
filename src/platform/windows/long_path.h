// Paths as the system takes them at any length.
#pragma once

#include <filesystem>
#include <string>

namespace velmora::platform {

/// The full path, in the form that the limit of 260 units does not hold for. Every path goes to the system in this
/// form: a store's name alone may be as long as that. What names no file, a device, stays as it is.
std::wstring LongPath(const std::filesystem::path& path);

/// The full path in its usual form.
std::wstring FullPath(const std::filesystem::path& path);

/// A long path in its usual form.
std::wstring WithoutPrefix(std::wstring path);

}  // namespace velmora::platform
