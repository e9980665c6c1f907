// Times of a store: counts of 100 nanoseconds since 1 January 1601 UTC.
#pragma once

#include <cstdint>
#include <optional>

#include "store/operations.h"

namespace velmora::messaging {

using FileTime = std::uint64_t;

inline constexpr FileTime kTicksPerSecond = 10'000'000;
inline constexpr FileTime kTicksPerMinute = 60 * kTicksPerSecond;

/// 1 January 4501, the time that stands for "none" and the last one that readers take.
inline constexpr FileTime kNoDate = 0x0CB34557A3DD4000;

/// The file time of a date, in whole seconds. Nothing for a value that is no number, for 1 January 1601
/// 00:00 and before (a count of 0 reads as "no value") and for what lies beyond kNoDate.
std::optional<FileTime> FileTimeOf(output::OleDate date);

/// The reverse, in whole seconds; what lies beyond the year 9999 gives the date 0.0.
output::OleDate DateOf(FileTime time);

/// The file time of a count of seconds since 1 January 1970.
FileTime FileTimeOfUnixSeconds(std::int64_t seconds);

}  // namespace velmora::messaging
