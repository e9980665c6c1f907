// One run of one worker over one COutLook.
#pragma once

#include "conversion/out_look.h"
#include "conversion/run_state.h"

namespace velmora::conversion {

enum class RunEnd {
  kFinished,    ///< all steps were called, though a failed one may have raised `runAborted`
  kEndedEarly,  ///< a step ended the worker after its message
  kStopped,     ///< somebody stopped it for good
};

/// Runs all steps on the calling thread and returns when the run is over. Whoever starts it has cleared
/// `runEnded` and reset `run.control` before.
///
/// A finished run raises `runEnded` last; the other two raise no flag.
RunEnd RunConversion(COutLook& outLook, RunState& state);

}  // namespace velmora::conversion
