// The head of the page: how it went in one sentence, the totals, what was read and where it went.
#pragma once

#include "cli/report_frame.h"
#include "conversion/complete_run.h"

namespace velmora::cli::page {

/// What a page says of a run beside what the report holds.
struct Run {
  bool isDryRun = false;
  bool isStopped = false;
};

void WriteSummary(const ReportFrame& frame, const conversion::CompleteReport& report, const Run& run,
                  const ReportSink& sink);

}  // namespace velmora::cli::page
