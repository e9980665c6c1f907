// The version that a program file carries.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace velmora::platform {

/// Four numbers, the most significant first.
using FileVersion = std::array<std::uint16_t, 4>;

/// What a program places into itself so that its file has a version: the version block of Windows programs,
/// which opens with its signature.
struct FileVersionBlock {
  std::uint32_t signature = 0xFEEF04BD;
  std::uint32_t structureVersion = 0x00010000;
  std::uint32_t fileVersionHigh = 0;  ///< the first number in the upper half, the second in the lower
  std::uint32_t fileVersionLow = 0;
};
static_assert(sizeof(FileVersionBlock) == 16);

/// The version of a program file of at most 256 MiB, by its first version block; nothing if it has none or cannot be
/// read.
std::optional<FileVersion> ReadFileVersion(const std::filesystem::path& file);

}  // namespace velmora::platform
