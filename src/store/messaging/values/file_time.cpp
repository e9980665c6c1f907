#include "store/messaging/values/file_time.h"

#include "store/ole_date.h"

namespace velmora::messaging {
namespace {

using output::kOleEpochInFileTimeSeconds;
using output::kSecondsPerDay;

constexpr std::int64_t kUnixEpochInFileTimeSeconds = 11'644'473'600;
constexpr double kLastOleDay = 2958466.0;

}  // namespace

std::optional<FileTime> FileTimeOf(output::OleDate date) {
  if (!(date.days > -static_cast<double>(kOleEpochInFileTimeSeconds / kSecondsPerDay) && date.days < kLastOleDay)) {
    return std::nullopt;
  }
  const std::int64_t seconds = output::SecondsOf(date) + kOleEpochInFileTimeSeconds;
  if (seconds <= 0) return std::nullopt;
  const FileTime time = static_cast<FileTime>(seconds) * kTicksPerSecond;
  if (time > kNoDate) return std::nullopt;
  return time;
}

output::OleDate DateOf(FileTime time) {
  const auto seconds = static_cast<std::int64_t>(time / kTicksPerSecond) - kOleEpochInFileTimeSeconds;
  const output::OleDate date = output::OleDateOf(seconds);
  return date.days < kLastOleDay ? date : output::OleDate{};
}

FileTime FileTimeOfUnixSeconds(std::int64_t seconds) {
  return static_cast<FileTime>(seconds + kUnixEpochInFileTimeSeconds) * kTicksPerSecond;
}

}  // namespace velmora::messaging
