// The report of a complete conversion as one JSON object.
#pragma once

#include <string>

#include "cli/report_frame.h"
#include "conversion/complete_run.h"

namespace velmora::cli {

/// Like ReportJson, with the account in place of what recovery tells.
std::string CompleteReportJson(const ReportFrame& frame, const conversion::CompleteReport& report);

}  // namespace velmora::cli
