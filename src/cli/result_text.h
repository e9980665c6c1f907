// What a finished conversion says: where the new store is and what it holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conversion/run_report.h"
#include "conversion/summary.h"

namespace velmora::cli {

struct StoreContents {
  std::vector<conversion::SummaryFolder> folders;
  std::vector<std::optional<std::int32_t>> counts;  ///< one a folder
  conversion::FolderCounters totals;
};

/// Counts the folders of the session's store and appends the summary to the log at `logPath`, if that file
/// exists. A store that does not answer holds nothing.
StoreContents CountStore(output::RDOSession& session, text::TextView storeName, text::TextView logPath);

/// The losses by kind and number, in one sentence, and how to see them one by one; empty when nothing is lost.
/// `reportPath` is the value of the option: empty when there is no report.
std::string LossText(const recovery::RecoveryReport& report, std::string_view reportPath);

/// `destination` empty: nothing was written.
std::string ResultText(text::TextView destination, text::TextView storeName, const StoreContents& contents);

}  // namespace velmora::cli
