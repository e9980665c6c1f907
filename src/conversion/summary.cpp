#include "conversion/summary.h"

#include "conversion/run_log.h"
#include "platform/file.h"
#include "platform/path_text.h"
#include "recovery/folder_path.h"
#include "store/format/classes.h"

namespace velmora::conversion {
namespace {

/// A folder of meetings counts as one of mail.
std::int64_t FolderCounters::*CounterOf(text::TextView containerClass) {
  switch (KindOfClass(containerClass).value_or(ItemKind::kMail)) {
    case ItemKind::kContact:
      return &FolderCounters::contacts;
    case ItemKind::kJournal:
      return &FolderCounters::journals;
    case ItemKind::kTask:
      return &FolderCounters::tasks;
    case ItemKind::kNote:
      return &FolderCounters::notes;
    case ItemKind::kAppointment:
      return &FolderCounters::calendar;
    default:
      return &FolderCounters::mail;
  }
}

/// The end of the log of a run. Where the run keeps none there is nothing to write to.
class LogEnd {
 public:
  explicit LogEnd(text::TextView path) : file_(platform::OpenForWriting(platform::PathOf(path))) {}
  void Write(text::TextView piece) {
    if (file_) AppendToLog(**file_, piece);
  }

 private:
  platform::Result<std::unique_ptr<platform::ByteStore>> file_;
};

std::optional<std::int32_t> CountInto(LogEnd& log, output::RDOSession& session, text::TextView path,
                                      FolderCounters& counters) {
  const auto folder = session.GetFolderFromPath(path);
  if (!folder) return std::nullopt;
  const std::int32_t count = folder->Items()->Count();
  counters.*CounterOf(folder->ContainerClass()) += count;
  counters.total += count;
  counters.lastFolder = count;
  log.Write(u"\r\n\r\n" + text::Text(path) + u": " + text::Decimal(count));
  return count;
}

bool IsSkipped(const SummaryFolder& folder) {
  return !folder.hasParent && folder.name != recovery::kLostFolderName && folder.name != recovery::kOrphanFolderName;
}

}  // namespace

std::vector<SummaryFolder> FoldersOf(output::RDOSession& session, text::TextView storeName) {
  struct Level {
    output::Ref<output::RDOFolders> folders;
    text::Text path;
    std::int32_t next;
  };
  std::vector<SummaryFolder> found;
  std::vector<Level> levels;
  levels.push_back({session.Stores()->DefaultStore()->IPMRootFolder()->Folders(), u"\\\\" + text::Text(storeName), 0});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.folders->Count()) {
      levels.pop_back();
      continue;
    }
    const auto folder = level.folders->At(level.next++);
    found.push_back({level.path + u"\\" + folder->Name(), folder->Name()});
    levels.push_back({folder->Folders(), found.back().path, 0});
  }
  return found;
}

std::vector<std::optional<std::int32_t>> WriteSummary(output::RDOSession& session,
                                                      const std::vector<SummaryFolder>& folders, text::TextView logPath,
                                                      FolderCounters& counters) {
  LogEnd log(logPath);
  log.Write(u"\r\n\r\n");
  log.Write(u"-------------------Summary--------------------");
  counters = {};
  std::vector<std::optional<std::int32_t>> counts;
  for (const SummaryFolder& folder : folders) {
    counts.push_back(IsSkipped(folder) ? std::nullopt : CountInto(log, session, folder.path, counters));
  }
  log.Write(u"\r\n\r\nTotal recovered mail items : ");
  log.Write(text::Decimal(counters.total));
  log.Write(u"\r\n\r\nDate and time : ");
  log.Write(LogTime());
  return counts;
}

StoreContents CountStore(output::RDOSession& session, text::TextView storeName, text::TextView logPath) {
  StoreContents contents;
  try {
    contents.folders = FoldersOf(session, storeName);
    contents.counts = WriteSummary(session, contents.folders, logPath, contents.totals);
  } catch (const output::OutputFailure&) {
    return {};
  }
  return contents;
}

}  // namespace velmora::conversion
