#include "conversion/out_look.h"

#include <exception>

#include "engine/steps.h"
#include "output/items/item_converters.h"
#include "platform/path_text.h"
#include "recovery/steps.h"

namespace velmora::conversion {

COutLook::COutLook(RunState& state, OutputFactory makeOutput, platform::SourceOpener openSource)
    : state_(state),
      makeOutput_(std::move(makeOutput)),
      openSource_(std::move(openSource)),
      converters_(items::MakeItemConverters()) {}

COutLook::~COutLook() = default;

void COutLook::OpenSource(const text::Text& path) {
  report_ = {};
  recovery_ = {};
  sealFailure_.reset();
  storeFailed_ = false;
  logText_ = path;
  CloseSourceAndLog();
  if (logEnabled) {
    logHandle_ = std::make_unique<RunLogFile>();
    state_.run.log = logHandle_.get();
  }
  engine::OpenSource(scan_, state_.run, platform::PathOf(path), openSource_);
}

void COutLook::ProbeFormat() {
  if (state_.run.runEnded) return;
  const engine::ProbeResult result = engine::ProbeFormat(scan_, state_.run);
  report_.storeKind = scan_.found->storeKind;
  if (result == engine::ProbeResult::kFound) {
    report_.format = scan_.found->layout.formatId;
    return;
  }
  CloseSourceAndLog();
  state_.run.Say(engine::Notice{engine::NoticeKind::kNotValid, {}, {}});
  CloseConversion();
  throw engine::WorkerEnded{};
}

void COutLook::ScanNodePages() {
  engine::ScanNodePages(scan_, state_.run);
  report_.nodeCount = scan_.found->nodeCount;
}

void COutLook::ScanBlockPages() {
  engine::ScanBlockPages(scan_, state_.run);
  report_.blockRecordCount = scan_.found->blockRecordCount;
  report_.orphanBlockCount = scan_.found->orphanBlockCount;
}

void COutLook::RecoverFolders() {
  recovery_.session = session_;
  recovery_.targetStore = targetStore_;
  recovery_.convertedName = state_.convertedName;
  recovery_.codePage = &state_.codePage;
  recovery_.converters = &converters_;
  store_ = engine::FinishScan(scan_, state_.run);
  recovery::RecoverFolders(recovery_, *store_, state_.run);
}

void COutLook::RecoverOrphans() {
  if (store_ != nullptr) recovery::RecoverOrphans(recovery_, *store_, state_.run);
}

void COutLook::NoteEarlyEnd(const std::exception& failure) {
  recovery_.report.lost.push_back(
      {recovery::LossKind::kRun, 0, 0, {}, u"a step of the run ended early: " + text::FromUtf8(failure.what())});
}

void COutLook::ReportStoreFailure(const platform::Failure& cause) {
  storeFailed_ = true;
  const bool isFull = cause.kind == platform::FailureKind::kFull;
  state_.run.Abort(
      {isFull ? engine::NoticeKind::kDiskFull : engine::NoticeKind::kStoreNotWritten, state_.destinationPath, cause});
}

platform::Failure FailureOf(const std::exception& failure) {
  const auto* output = dynamic_cast<const output::OutputFailure*>(&failure);
  return output != nullptr ? output::CauseOf(*output)
                           : platform::Failure{platform::FailureKind::kInputOutput, {}, {}, failure.what()};
}

}  // namespace velmora::conversion
