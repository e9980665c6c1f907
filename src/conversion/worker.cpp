#include "conversion/worker.h"

#include "conversion/notices.h"

namespace velmora::conversion {
namespace {

/// The message about a store that cannot be written takes the place of whatever the step had to say.
void RunStep(COutLook& outLook, void (COutLook::*step)()) {
  try {
    (outLook.*step)();
  } catch (const output::OutputFailure& failure) {
    if (!output::IsStoreFailure(failure)) return outLook.NoteEarlyEnd(failure);
    outLook.ReportStoreFailure(FailureOf(failure));
  } catch (const std::exception& failure) {
    outLook.NoteEarlyEnd(failure);
  }
}

void ReportSealFailure(COutLook& outLook, const RunState& state) {
  if (!outLook.SealFailure() || state.run.runAborted) return;
  outLook.ReportStoreFailure(*outLook.SealFailure());
}

}  // namespace

RunEnd RunConversion(COutLook& outLook, RunState& state) {
  engine::RunContext& run = state.run;
  run.runAborted = false;
  state.previewSession.Release();
  try {
    outLook.OpenSource(state.sourcePath);
    outLook.ProbeFormat();
    outLook.SetUpConversion(state.destinationPath, state.sourceFileName);
    for (const auto step :
         {&COutLook::ScanNodePages, &COutLook::ScanBlockPages, &COutLook::RecoverFolders, &COutLook::RecoverOrphans}) {
      RunStep(outLook, step);
    }
    outLook.CloseConversion();
    ReportSealFailure(outLook, state);
  } catch (const engine::WorkerEnded&) {
    return RunEnd::kEndedEarly;
  } catch (const engine::RunStopped&) {
    outLook.DropRun();
    ReportSealFailure(outLook, state);
    run.runAborted = false;
    return RunEnd::kStopped;
  }
  outLook.FreeNamedPropMap();
  run.Say(engine::ListCleared{});
  if (!run.runAborted) {
    if (run.runEnded) {
      run.Say(engine::Notice{engine::NoticeKind::kAborted, state.destinationPath, {}});
    } else {
      run.Say(engine::Done{});
    }
  }
  run.runEnded = true;
  state.treeFilling = true;
  run.smartScan = false;
  return RunEnd::kFinished;
}

}  // namespace velmora::conversion
