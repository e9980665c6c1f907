// The file from its beginning to its end as a picture of squares.
#pragma once

#include "cli/report_frame.h"
#include "complete/account.h"

namespace velmora::cli::page {

/// A section of a page; nothing where there is no map.
void WriteFilePicture(const complete::FileMap& map, const ReportSink& sink);

}  // namespace velmora::cli::page
