#include "conversion/complete_run.h"

#include "conversion/notices.h"
#include "conversion/out_look.h"
#include "conversion/run_log.h"
#include "engine/proven_store.h"
#include "platform/file_system.h"
#include "platform/path_text.h"
#include "store/messaging/pst_library.h"
#include "store/messaging/store_writer.h"
#include "text/text.h"

namespace velmora::conversion {
namespace {

using engine::NoticeKind;

constexpr std::size_t kStoresNamed = 10;

class CompleteRun {
 public:
  CompleteRun(const CompleteRequest& request, engine::RunContext& run, CompleteReport& report)
      : request_(request), run_(run), report_(report) {}

  RunEnd Run() {
    RunEnd end = RunEnd::kFinished;
    try {
      Read();
      MakeStore();
      if (!run_.runAborted) Copy();
    } catch (const engine::WorkerEnded&) {
      end = RunEnd::kEndedEarly;
    } catch (const engine::RunStopped&) {
      end = RunEnd::kStopped;
    } catch (const output::OutputFailure& failure) {
      NoteNotWritten(FailureOf(failure));
    }
    Close(end);
    return end;
  }

 private:
  void Read() {
    run_.BeginStage(1);
    auto source = request_.open(request_.source);
    if (!source) {
      run_.Say(engine::Notice{NoticeKind::kSourceNotOpened, {}, source.error()});
      throw engine::WorkerEnded{};
    }
    openedSize_ = (*source)->Size();
    run_.BeginStage(2);
    store_ = engine::ProvenStore::Prove(std::move(*source), request_.copy.deleted, run_, request_.at);
    report_.place = store_->Place();
    report_.others = store_->Others();
    report_.storeKind = store_->Kind();
    if (!store_->IsStore() || store_->Kind() == engine::StoreKind::kPab) {
      run_.Say(engine::Notice{NoticeKind::kNotValid, {}, WhyNotValid()});
      throw engine::WorkerEnded{};
    }
    report_.format = store_->Format().formatId;
  }

  /// No store at all needs no more words.
  platform::Failure WhyNotValid() const {
    if (!request_.at || store_->IsStore()) return {};
    std::string message = "no store begins at byte " + std::to_string(*request_.at);
    if (!report_.others.empty()) message += ", but at " + std::to_string(report_.others.front().from);
    for (std::size_t i = 1; i < std::min(report_.others.size(), kStoresNamed); ++i) {
      message += ", " + std::to_string(report_.others[i].from);
    }
    return {platform::FailureKind::kNotFound, platform::BytesOfPath(request_.source), request_.at, message};
  }

  void MakeStore() {
    run_.BeginStage(3);
    const text::Text name = platform::TextOfPath(request_.source.stem()) + u" Converted";
    auto file = request_.dryRun ? platform::CreateUnnamedFile() : CreateFileIn(FreeFolder(name), name);
    if (!file) return run_.Abort({NoticeKind::kStoreNotMade, {}, file.error()});
    StartLog();
    messaging::StoreOptions options;
    options.sourceDateEpoch = messaging::PstLibraryOptions::EpochOfEnvironment();
    options.codePage = request_.copy.codePage;
    options.workers = run_.workers;
    try {
      target_ = messaging::StoreWriter::Create(std::move(*file), name, options);
    } catch (const output::OutputFailure& failure) {
      report_.store.clear();  // what lies there is no store yet
      run_.Abort({NoticeKind::kStoreNotMade, {}, FailureOf(failure)});
    }
  }

  /// A new folder for the store: "NAME0", or the next number that no folder has.
  platform::Result<std::filesystem::path> FreeFolder(const text::Text& name) {
    for (std::uint32_t number = 0;; ++number) {
      const std::filesystem::path folder = request_.destination / platform::PathOf(name + text::Decimal(number));
      const auto made = platform::CreateFolder(folder);
      if (made) return folder;
      if (made.error().kind != platform::FailureKind::kExists) return tl::unexpected(made.error());
    }
  }

  platform::Result<std::unique_ptr<platform::ByteStore>> CreateFileIn(
      const platform::Result<std::filesystem::path>& folder, const text::Text& name) {
    if (!folder) return tl::unexpected(folder.error());
    report_.store = *folder / platform::PathOf(name + u".pst");
    return platform::CreateFile(report_.store, platform::Existing::kRefuse);
  }

  void StartLog() {
    if (!request_.log || report_.store.empty()) return;
    log_.Open(report_.store.parent_path() / "LogInformation.log");
    run_.log = &log_;
    run_.Log(u"Complete conversion\r\n\r\nSource File Path:" + platform::TextOfPath(request_.source));
    run_.Log(u"\r\n\r\nDestination File Path:" + platform::TextOfPath(report_.store));
    run_.Log(u"\r\n\r\nStart date and time : " + LogTime());
  }

  void LogSummary() {
    run_.Log(u"\r\n\r\n-------------------Summary--------------------");
    for (const auto& [messageClass, counts] : report_.account.items) {
      run_.Log(u"\r\n\r\n" + messageClass + u" : " + text::Decimal(counts.whole) + u" whole, " +
               text::Decimal(counts.partial) + u" in part, " + text::Decimal(counts.lost) + u" lost");
    }
    const complete::ItemCounts totals = report_.account.Totals();
    run_.Log(u"\r\n\r\nTotal recovered mail items : " + text::Decimal(totals.whole + totals.partial));
    run_.Log(u"\r\n\r\nDate and time : " + LogTime());
  }

  void Copy() {
    complete::CopyStore(*store_, *target_, request_.copy, run_, report_.account);
    isCopied_ = true;
  }

  void Verify() {
    const auto written = platform::OpenForReading(report_.store);
    if (!written) return NoteNotWritten(written.error());
    complete::CompareStores(*store_, **written, request_.copy, run_, report_.account);
  }

  void NoteNotWritten(const platform::Failure& cause) {
    const bool isFull = cause.kind == platform::FailureKind::kFull;
    run_.Abort(
        {isFull ? NoticeKind::kDiskFull : NoticeKind::kStoreNotWritten, platform::TextOfPath(report_.store), cause});
  }

  void Close(RunEnd& end) {
    run_.BeginStage(9);
    try {
      if (target_ != nullptr) target_->Seal();
      if (isCopied_ && request_.verify && !request_.dryRun) Verify();
    } catch (const output::OutputFailure& failure) {
      if (!run_.runAborted) NoteNotWritten(FailureOf(failure));
    } catch (const FailureError& failure) {
      NoteNotWritten(failure.Cause());
    } catch (const engine::RunStopped&) {
      end = RunEnd::kStopped;
    }
    const auto sizeNow = platform::FileSize(request_.source);
    if (sizeNow && openedSize_ && *sizeNow > *openedSize_) report_.grownBy = *sizeNow - *openedSize_;
    if (store_ != nullptr) {
      report_.readFailure = store_->Bytes().FirstFailure();
      const engine::BadRanges unread = store_->Bytes().Unread();
      report_.unread.assign(unread.Ranges().begin(), unread.Ranges().end());
    }
    if (end == RunEnd::kFinished && !run_.runAborted) run_.Say(engine::Done{});
    LogSummary();
    run_.log = nullptr;
  }

  const CompleteRequest& request_;
  engine::RunContext& run_;
  CompleteReport& report_;
  RunLogFile log_;
  std::optional<std::uint64_t> openedSize_;           ///< of the source; nothing until it is open
  std::unique_ptr<const engine::ProvenStore> store_;  ///< null until the source is open and looked through
  std::shared_ptr<messaging::StoreWriter> target_;
  bool isCopied_ = false;  ///< to its end
};

}  // namespace

RunEnd RunComplete(const CompleteRequest& request, engine::RunContext& run, CompleteReport& report) {
  run.runAborted = false;
  report = {};
  return CompleteRun(request, run, report).Run();
}

}  // namespace velmora::conversion
