#include <fmt/format.h>

#include <filesystem>
#include <utility>

#include "conversion/out_look.h"
#include "engine/index_file.h"
#include "platform/file.h"

namespace velmora::conversion {
namespace {

/// A failure in one group of releases ends that group alone.
template <class Group>
void Protected(Group&& group) {
  try {
    group();
  } catch (const std::exception&) {
  }
}

/// Twice, unless the file is not there; the second result does not matter.
void DeleteIndexFile(const std::filesystem::path& outputFolder) {
  // Before the set-up has named a folder, the bare name would mean a file of somebody else's.
  if (outputFolder.empty()) return;
  const std::filesystem::path file = outputFolder / engine::kIndexFileName;
  if (const auto deleted = platform::DeleteFile(file);
      !deleted && deleted.error().kind != platform::FailureKind::kNotFound) {
    static_cast<void>(platform::DeleteFile(file));
  }
}

void ReportFullTable(recovery::RecoveryReport& report, const output::FullTable& table) {
  report.lost.push_back({recovery::LossKind::kRow,
                         0,
                         0,
                         {},
                         u"the table of the folder \"" + table.folder +
                             u"\" is full: values missing in the list of its items, " + u"though not in the items: " +
                             text::FromUtf8(std::to_string(table.valuesLeftOut))});
}

void AddItems(output::RDOSession& session, text::TextView path, LeftStore& left) {
  const auto folder = session.GetFolderFromPath(path);
  if (!folder) return;
  const auto items = folder->Items();
  for (auto item = items->GetFirst(); item; item = items->GetNext()) {
    ++left.items[item->MessageClass()];
    const output::AttachmentTotals attachments = item->SavedAttachments();
    left.attachments.files += attachments.files;
    left.attachments.messages += attachments.messages;
  }
}

/// Opens the new store anew and counts what is in it; the log, if there is one, gets its summary. A store that cannot
/// be opened holds nothing.
LeftStore ReadLeftStore(output::OutputLibrary& library, const RunState& state) {
  LeftStore left;
  try {
    const auto session = library.CreateRDOSession();
    session->Stores()->OpenPSTStore(state.destinationPath);
    left.contents = CountStore(*session, state.convertedName, state.logPath);
    for (const SummaryFolder& folder : left.contents.folders) AddItems(*session, folder.path, left);
  } catch (const output::OutputFailure&) {
    // What was counted so far is there.
  }
  return left;
}

void ListRange(recovery::RecoveryReport& report, const std::string& reason) {
  report.lost.push_back({recovery::LossKind::kSourceRange, 0, 0, {}, text::FromUtf8(reason)});
}

}  // namespace

void ReportUnreadRanges(const engine::BadRanges& bad, recovery::RecoveryReport& report) {
  std::size_t listed = 0;
  std::uint64_t bytesBeyond = 0;
  for (const auto& [begin, end] : bad.Ranges()) {
    if (listed == kMostUnreadRanges) {
      bytesBeyond += end - begin;
    } else {
      ++listed;
      ListRange(report, fmt::format("{} bytes at offset {} of the source could not be read", end - begin, begin));
    }
  }
  if (bytesBeyond != 0) {
    ListRange(report, fmt::format("{} more stretches of the source, {} bytes in all, could not be read",
                                  bad.Ranges().size() - listed, bytesBeyond));
  }
}

void COutLook::CloseConversion() {
  CompleteReport();
  state_.run.BeginStage(9);
  Protected([&] {
    DeleteIndexFile(scan_.outputFolder);
    CloseSourceAndLog();
  });
  Protected([&] { recovery_.folders = {}; });
  Protected([&] {
    if (state_.profileName.empty()) return;
    SealOutput();
    ReleaseSession();
  });
  Protected([&] { ReleaseStore(); });
}

void COutLook::CloseSourceAndLog() {
  store_.reset();
  if (scan_.found != nullptr) scan_.found->source.Close();
  state_.run.log = nullptr;
  logHandle_.reset();
}

void COutLook::CompleteReport() {
  report_.recovery = recovery_.report;
  const engine::ScannedStore* read = store_ != nullptr ? store_.get() : scan_.found.get();
  if (read == nullptr) return;
  report_.blockEncoding = read->blockEncoding;
  report_.readFailure = read->source.FirstFailure();
  ReportUnreadRanges(read->source.Unread(), report_.recovery);
}

void COutLook::ReleaseSession() {
  recovery_.session.Release();
  session_.Release();
  profiles_.Release();
}

void COutLook::ReleaseStore() {
  recovery_.targetStore.Release();
  targetStore_.Release();
}

void COutLook::SealOutput() {
  const RunOutput output = std::exchange(output_, {});
  if (!output.seal) return;
  if (const auto sealed = output.seal(); !sealed) sealFailure_ = sealed.error();
  if (output.fullTables) {
    for (const output::FullTable& table : output.fullTables()) ReportFullTable(report_.recovery, table);
  }
  if (sealFailure_ || storeFailed_) LookAtWhatIsLeft(*output.library);
}

void COutLook::LookAtWhatIsLeft(output::OutputLibrary& library) {
  report_.left = ReadLeftStore(library, state_);
  recovery::RecoveryReport& recovery = report_.recovery;
  recovery.items = report_.left->items;
  recovery.attachments = report_.left->attachments.files;
  recovery.embedded = report_.left->attachments.messages;
  recovery.lost.push_back(
      {recovery::LossKind::kRun,
       0,
       0,
       {},
       u"the new store could not be written any further; nodes and orphaned blocks worked through: " +
           text::FromUtf8(std::to_string(recovery.nodesDone))});
}

void COutLook::DropRun() {
  CompleteReport();
  CloseSourceAndLog();
  scan_ = {};
  recovery_ = {};
  SealOutput();
  ReleaseSession();
  ReleaseStore();
}

}  // namespace velmora::conversion
