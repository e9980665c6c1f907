// The report of a complete conversion as one page for people, which needs nothing but itself.
#pragma once

#include "cli/report_frame.h"
#include "conversion/complete_run.h"

namespace velmora::cli {

/// What the page says of a run beside what the report holds.
struct PageRun {
  bool isDryRun = false;
  bool isStopped = false;
};

/// Written piece by piece. It is well-formed XML but for style and script.
void WriteCompleteReportHtml(const ReportFrame& frame, const conversion::CompleteReport& report, const PageRun& run,
                             const ReportSink& sink);

}  // namespace velmora::cli
