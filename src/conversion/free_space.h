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

}  // namespace velmora::conversion
