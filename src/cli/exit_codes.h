// How the program ends: the one table of its exit codes, and which of them a notice of the run leads to.
#pragma once

#include <string_view>

#include "conversion/notices.h"

namespace velmora::cli {

/// After sysexits where that has a code for it; a signal's code as shells give it.
enum class ExitCode : int {
  kDone = 0,
  kAborted = 1,
  kLosses = 3,
  kUsage = 64,
  kNotValid = 65,
  kNoSource = 66,
  kNoOutput = 73,
  kInputOutput = 74,
  kStopped = 130,
};

struct ExitCodeRow {
  ExitCode code;
  std::string_view meaning;
};

inline constexpr ExitCodeRow kExitCodes[] = {
    {ExitCode::kDone, "done"},
    {ExitCode::kAborted, "the run was aborted"},
    {ExitCode::kLosses, "done with losses, which the report lists"},
    {ExitCode::kUsage, "wrong usage"},
    {ExitCode::kNotValid, "the source is not a valid store"},
    {ExitCode::kNoSource, "the source cannot be opened"},
    {ExitCode::kNoOutput, "the output cannot be made"},
    {ExitCode::kInputOutput, "reading or writing failed, or --verify found a difference"},
    {ExitCode::kStopped, "stopped by Ctrl-C"},
};

/// The exit code of a run that ended with this notice.
ExitCode ExitCodeOf(conversion::NoticeKind kind);

}  // namespace velmora::cli
