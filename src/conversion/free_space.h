// Is there room for the new store?
#pragma once

#include <cstdint>

#include "text/text.h"

namespace velmora::conversion {

/// Sizes are compared in whole MiB, and equal ones are refused. Of the free MiB the low 32 bits count.
bool IsEnoughSpace(std::uint64_t sourceBytes, std::uint64_t freeBytes);

/// Tests the file system of the destination, or of its nearest folder that exists, against the size of the
/// source. A source that cannot be opened counts as size 0; a file system that does not answer has no room.
bool HasEnoughFreeSpace(text::TextView destination, text::TextView sourcePath);

/// Shown under "Information" when there is not.
inline constexpr text::TextView kNotEnoughSpace =
    u"Not enough free disk space available to save converted .pst file.\n"
    u"Please start the process again by selecting another destination path.";

}  // namespace velmora::conversion
