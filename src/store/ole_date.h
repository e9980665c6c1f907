// Dates of the output operations, in whole seconds.
//
// An OLE date counts days from 30 December 1899. The integer part is the day; the fraction is the time of
// that day and counts forward from midnight whatever the sign, so -1.25 is 06:00 on 29 December 1899.
#pragma once

#include <cmath>
#include <cstdint>

#include "store/operations.h"

namespace velmora::output {

inline constexpr std::int64_t kSecondsPerDay = 86400;

/// Seconds from 1 January 1601, where file times begin, to 30 December 1899.
inline constexpr std::int64_t kOleEpochInFileTimeSeconds = 109205 * kSecondsPerDay;

/// Seconds since 30 December 1899 00:00 (negative before it), rounded to the nearest. A value that is no
/// number, or lies outside the years 100 to 9999, gives 0.
inline std::int64_t SecondsOf(OleDate date) {
  if (!(date.days > -657435.0 && date.days < 2958466.0)) return 0;
  const double day = std::trunc(date.days);
  const double time = std::fabs(date.days - day);
  return static_cast<std::int64_t>(day) * kSecondsPerDay + std::llround(time * static_cast<double>(kSecondsPerDay));
}

/// The date of that many seconds since 30 December 1899 00:00.
inline OleDate OleDateOf(std::int64_t seconds) {
  std::int64_t day = seconds / kSecondsPerDay;
  std::int64_t time = seconds % kSecondsPerDay;
  if (time < 0) {
    --day;
    time += kSecondsPerDay;
  }
  const double fraction = static_cast<double>(time) / static_cast<double>(kSecondsPerDay);
  return {day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction};
}

}  // namespace velmora::output
