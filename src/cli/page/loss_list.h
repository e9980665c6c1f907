// What is lost or not whole, one by one, with a search.
#pragma once

#include "cli/report_frame.h"
#include "complete/account.h"

namespace velmora::cli::page {

/// A section of a page; nothing where nothing is lost.
void WriteLossList(const complete::Account& account, const ReportSink& sink);

}  // namespace velmora::cli::page
