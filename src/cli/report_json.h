// The report of a run as one JSON object.
#pragma once

#include <string>

#include "cli/report_frame.h"
#include "conversion/run_report.h"

namespace velmora::cli {

/// Ends in a line end. Lone surrogates become U+FFFD, since JSON readers differ about them.
std::string ReportJson(const ReportFrame& frame, const conversion::RunReport& report);

}  // namespace velmora::cli
