// The report of a run as one JSON object.
#pragma once

#include <string>

#include "conversion/run_report.h"
#include "text/text.h"

namespace velmora::cli {

/// What the report says beside what the run found.
struct ReportFrame {
  text::Text source;
  text::Text destination;  ///< path of the new store, or the folder that was to hold it where it was not named yet
  text::Text refusal;      ///< text of the notice that ended the run; empty: none
  double seconds = 0.0;
  std::uint64_t peakRssKiB = 0;
};

/// Ends in a line end. Lone surrogates become U+FFFD, since JSON readers differ about them.
std::string ReportJson(const ReportFrame& frame, const conversion::RunReport& report);

}  // namespace velmora::cli
