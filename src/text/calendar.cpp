#include "text/calendar.h"

#include <chrono>
#include <cmath>

namespace velmora::text {
namespace {

// From 1 January 1601, where file times begin.
constexpr std::int64_t kOleEpochInFileTimeSeconds = 109205 * kSecondsPerDay;
constexpr std::int64_t kUnixEpochInFileTimeSeconds = 11'644'473'600;

// Days since 30 December 1899: all that lie between them are in the years 100 to 9999.
constexpr double kBeforeFirstOleDay = -657435.0;
constexpr double kLastOleDay = 2958466.0;

}  // namespace

std::int64_t SecondsOf(OleDate date) {
  if (!(date.days > kBeforeFirstOleDay && date.days < kLastOleDay)) return 0;
  const double day = std::trunc(date.days);
  const double time = std::fabs(date.days - day);
  return static_cast<std::int64_t>(day) * kSecondsPerDay + std::llround(time * static_cast<double>(kSecondsPerDay));
}

OleDate OleDateOf(std::int64_t seconds) {
  std::int64_t day = seconds / kSecondsPerDay;
  std::int64_t time = seconds % kSecondsPerDay;
  if (time < 0) {
    --day;
    time += kSecondsPerDay;
  }
  const double fraction = static_cast<double>(time) / static_cast<double>(kSecondsPerDay);
  return {day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction};
}

std::optional<FileTime> FileTimeOf(OleDate date) {
  if (!(date.days > -static_cast<double>(kOleEpochInFileTimeSeconds / kSecondsPerDay) && date.days < kLastOleDay)) {
    return std::nullopt;
  }
  const std::int64_t seconds = SecondsOf(date) + kOleEpochInFileTimeSeconds;
  if (seconds <= 0) return std::nullopt;
  const FileTime time = static_cast<FileTime>(seconds) * kTicksPerSecond;
  if (time > kNoDate) return std::nullopt;
  return time;
}

OleDate DateOf(FileTime time) {
  const OleDate date = OleDateOf(static_cast<std::int64_t>(time / kTicksPerSecond) - kOleEpochInFileTimeSeconds);
  return date.days < kLastOleDay ? date : OleDate{};
}

FileTime FileTimeOfUnixSeconds(std::int64_t seconds) {
  return static_cast<FileTime>(seconds + kUnixEpochInFileTimeSeconds) * kTicksPerSecond;
}

DateParts PartsOf(OleDate date) {
  namespace chrono = std::chrono;
  constexpr chrono::sys_days kOleEpoch{chrono::year{1899} / 12 / 30};
  const chrono::sys_seconds time = kOleEpoch + chrono::seconds(SecondsOf(date));
  const auto midnight = chrono::floor<chrono::days>(time);
  const chrono::year_month_day day(midnight);
  const chrono::hh_mm_ss clock(time - midnight);
  return {static_cast<int>(day.year()),
          static_cast<int>(static_cast<unsigned>(day.month())),
          static_cast<int>(static_cast<unsigned>(day.day())),
          static_cast<int>(clock.hours().count()),
          static_cast<int>(clock.minutes().count()),
          static_cast<int>(clock.seconds().count())};
}

}  // namespace velmora::text
