// What a new store holds, folder by folder, and the block of the log that says so. To be asked before the
// session closes: at the latest when stage 9 is announced.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "store/operations.h"

namespace velmora::conversion {

/// Items by kind of folder. A folder counts for the kind that its container class names, else for mail.
struct FolderCounters {
  std::int64_t mail = 0;
  std::int64_t contacts = 0;
  std::int64_t journals = 0;
  std::int64_t tasks = 0;
  std::int64_t notes = 0;
  std::int64_t calendar = 0;
  std::int64_t total = 0;
  std::int64_t lastFolder = 0;  ///< items of the folder counted last
};

struct SummaryFolder {
  text::Text path;  ///< two backslashes and the store's name first
  text::Text name;
  /// A folder that hangs under none is left out, unless it is one of those that a run adds for items without
  /// a folder.
  bool hasParent = true;
};

/// The folders below the top of the session's default store, each before its children. `storeName` is the
/// name that their paths begin with.
std::vector<SummaryFolder> FoldersOf(output::RDOSession& session, text::TextView storeName);

/// Counts the folders in order and writes the block at the end of the log at `logPath`, if that file exists.
/// The result has one element a folder, without a value for those left out.
std::vector<std::optional<std::int32_t>> WriteSummary(output::RDOSession& session,
                                                      const std::vector<SummaryFolder>& folders, text::TextView logPath,
                                                      FolderCounters& counters);

struct StoreContents {
  std::vector<SummaryFolder> folders;
  std::vector<std::optional<std::int32_t>> counts;  ///< one a folder
  FolderCounters totals;
};

/// Counts the folders of the session's store and appends the summary to the log at `logPath`, if that file
/// exists. A store that does not answer holds nothing.
StoreContents CountStore(output::RDOSession& session, text::TextView storeName, text::TextView logPath);

}  // namespace velmora::conversion
