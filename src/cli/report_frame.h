// What the reports of both conversions say beside what the run found.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "text/text.h"

namespace velmora::cli {

/// Takes a report piece by piece.
using ReportSink = std::function<void(std::string_view)>;

struct ReportFrame {
  text::Text source;
  text::Text destination;  ///< path of the new store, or the folder that was to hold it where it was not named yet
  text::Text refusal;      ///< text of the notice that ended the run; empty: none
  double seconds = 0.0;
  std::uint64_t peakRssKiB = 0;
};

}  // namespace velmora::cli
