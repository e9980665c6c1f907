// The report of a complete conversion as one page for people, which needs nothing but itself.
#pragma once

#include "cli/page/summary.h"
#include "cli/report_frame.h"
#include "conversion/complete_run.h"

namespace velmora::cli {

/// Written piece by piece. It is well-formed XML but for style and script.
void WriteCompleteReportHtml(const ReportFrame& frame, const conversion::CompleteReport& report, const page::Run& run,
                             const ReportSink& sink);

}  // namespace velmora::cli
