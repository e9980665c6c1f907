#include "conversion/unread_ranges.h"

#include <fmt/format.h>

namespace velmora::conversion {
namespace {

void Tell(recovery::RecoveryReport& report, const std::string& reason) {
  report.lost.push_back({recovery::LossKind::kSourceRange, 0, 0, {}, text::FromUtf8(reason)});
}

}  // namespace

void TellUnreadRanges(const engine::BadRanges& bad, recovery::RecoveryReport& report) {
  std::size_t told = 0;
  std::uint64_t untoldBytes = 0;
  for (const auto& [begin, end] : bad.Ranges()) {
    if (told == kMostUnreadRanges) {
      untoldBytes += end - begin;
    } else {
      ++told;
      Tell(report, fmt::format("{} bytes at offset {} of the source could not be read", end - begin, begin));
    }
  }
  if (untoldBytes != 0) {
    Tell(report, fmt::format("{} more stretches of the source, {} bytes in all, could not be read",
                             bad.Ranges().size() - told, untoldBytes));
  }
}

}  // namespace velmora::conversion
