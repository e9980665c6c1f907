#include "conversion/unread_ranges.h"

#include <fmt/format.h>

namespace velmora::conversion {
namespace {

void List(recovery::RecoveryReport& report, const std::string& reason) {
  report.lost.push_back({recovery::LossKind::kSourceRange, 0, 0, {}, text::FromUtf8(reason)});
}

}  // namespace

void ReportUnreadRanges(const engine::BadRanges& bad, recovery::RecoveryReport& report) {
  std::size_t listed = 0;
  std::uint64_t bytesBeyond = 0;
  for (const auto& [begin, end] : bad.Ranges()) {
    if (listed == kMostUnreadRanges) {
      bytesBeyond += end - begin;
    } else {
      ++listed;
      List(report, fmt::format("{} bytes at offset {} of the source could not be read", end - begin, begin));
    }
  }
  if (bytesBeyond != 0) {
    List(report, fmt::format("{} more stretches of the source, {} bytes in all, could not be read",
                             bad.Ranges().size() - listed, bytesBeyond));
  }
}

}  // namespace velmora::conversion
