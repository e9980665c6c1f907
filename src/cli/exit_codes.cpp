#include "cli/exit_codes.h"

#include <algorithm>
#include <iterator>

namespace velmora::cli {
namespace {

using conversion::NoticeKind;

struct NoticeRow {
  NoticeKind kind;
  ExitCode code;
};

constexpr NoticeRow kNotices[] = {
    {NoticeKind::kSourceNotOpened, ExitCode::kNoSource},    {NoticeKind::kNotValid, ExitCode::kNotValid},
    {NoticeKind::kNoIndexFile, ExitCode::kNoOutput},        {NoticeKind::kComponentMissing, ExitCode::kNoOutput},
    {NoticeKind::kComponentFailed, ExitCode::kNoOutput},    {NoticeKind::kNoOutputFolder, ExitCode::kNoOutput},
    {NoticeKind::kNotEnoughSpace, ExitCode::kNoOutput},     {NoticeKind::kStoreNotMade, ExitCode::kNoOutput},
    {NoticeKind::kStoreNotWritten, ExitCode::kInputOutput}, {NoticeKind::kDiskFull, ExitCode::kInputOutput},
};

}  // namespace

ExitCode ExitCodeOf(NoticeKind kind) {
  const auto row = std::ranges::find(kNotices, kind, &NoticeRow::kind);
  return row == std::end(kNotices) ? ExitCode::kAborted : row->code;
}

}  // namespace velmora::cli
