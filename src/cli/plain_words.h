// Sizes, times and texts of a store as people read them on one line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "text/calendar.h"
#include "text/text.h"

namespace velmora::cli {

/// "1 byte", "999 bytes", "1.2 KB", "34.5 MB": in powers of 1000.
std::string SizeText(std::uint64_t bytes);

/// "2021-05-03 14:02", UTC.
std::string DateText(text::FileTime time);

/// Characters of a text that is to fit a line.
inline constexpr std::size_t kLongestLine = 80;

/// A text of a store on one line of a terminal: what would move the cursor, color or turn the line becomes a blank, and
/// a long text is cut.
std::string OneLine(text::TextView text, std::size_t longest = kLongestLine);

}  // namespace velmora::cli
