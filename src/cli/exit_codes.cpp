#include "cli/exit_codes.h"

namespace velmora::cli {

ExitCode ExitCodeOf(conversion::NoticeKind kind) {
  using conversion::NoticeKind;
  switch (kind) {
    case NoticeKind::kSourceNotOpened:
      return ExitCode::kNoSource;
    case NoticeKind::kNotValid:
      return ExitCode::kNotValid;
    case NoticeKind::kNoIndexFile:
    case NoticeKind::kComponentMissing:
    case NoticeKind::kComponentFailed:
    case NoticeKind::kNoOutputFolder:
    case NoticeKind::kNotEnoughSpace:
    case NoticeKind::kStoreNotMade:
      return ExitCode::kNoOutput;
    case NoticeKind::kStoreNotWritten:
    case NoticeKind::kDiskFull:
      return ExitCode::kInputOutput;
    case NoticeKind::kRegistering:
    case NoticeKind::kAborted:
      break;
  }
  return ExitCode::kAborted;
}

}  // namespace velmora::cli
