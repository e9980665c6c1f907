// Times: as mail stores hold them, as the operations of the output library take them, and as people read them. All UTC.
//
// An OLE date counts days from 30 December 1899. The integer part is the day; the fraction is the time of
// that day and counts forward from midnight whatever the sign, so -1.25 is 06:00 on 29 December 1899.
// A file time counts 100 nanoseconds since 1 January 1601.
#pragma once

#include <cstdint>
#include <optional>

namespace velmora::text {

struct OleDate {
  double days = 0.0;
  friend bool operator==(const OleDate&, const OleDate&) = default;
};

using FileTime = std::uint64_t;

inline constexpr std::int64_t kSecondsPerDay = 86400;
inline constexpr FileTime kTicksPerSecond = 10'000'000;
inline constexpr FileTime kTicksPerMinute = 60 * kTicksPerSecond;

/// 1 January 4501, the time that stands for "none" and the last one that readers take.
inline constexpr FileTime kNoDate = 0x0CB34557A3DD4000;

/// Seconds since 30 December 1899 00:00 (negative before it), rounded to the nearest. A value that is no
/// number, or lies outside the years 100 to 9999, gives 0.
std::int64_t SecondsOf(OleDate date);

/// The date of that many seconds since 30 December 1899 00:00.
OleDate OleDateOf(std::int64_t seconds);

/// The file time of a date, in whole seconds. Nothing for a value that is no number, for 1 January 1601
/// 00:00 and before (a count of 0 reads as "no value") and for what lies beyond kNoDate.
std::optional<FileTime> FileTimeOf(OleDate date);

/// The reverse, in whole seconds; what lies beyond the year 9999 gives the date 0.0.
OleDate DateOf(FileTime time);

/// The file time of a count of seconds since 1 January 1970.
FileTime FileTimeOfUnixSeconds(std::int64_t seconds);

/// Day and time of day of a date, to the nearest second.
struct DateParts {
  int year, month, day, hour, minute, second;
};
DateParts PartsOf(OleDate date);

}  // namespace velmora::text
