// On what the answer stands, for whoever wants to know more.
#pragma once

#include "cli/report_frame.h"
#include "conversion/complete_run.h"

namespace velmora::cli::page {

/// A section of a page.
void WriteEvidence(const ReportFrame& frame, const conversion::CompleteReport& report, const ReportSink& sink);

}  // namespace velmora::cli::page
