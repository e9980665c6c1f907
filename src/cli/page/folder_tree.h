// The folders of the new store, and what became of what stood in them.
#pragma once

#include <vector>

#include "cli/report_frame.h"
#include "complete/account.h"

namespace velmora::cli::page {

/// A section of a page; nothing where there is no folder.
void WriteFolderTree(const std::vector<complete::FolderAccount>& folders, const ReportSink& sink);

}  // namespace velmora::cli::page
