#include "cli/exit_codes.h"

#include "conversion/free_space.h"
#include "conversion/messages.h"

namespace velmora::cli {
namespace {

struct BoxRow {
  text::TextView beginning;
  ExitCode code;
};

constexpr BoxRow kBoxes[] = {
    {engine::kSourceNotOpened, ExitCode::kNoSource},    {engine::kNotValid, ExitCode::kNotValid},
    {engine::kNoIndexFile, ExitCode::kNoOutput},        {conversion::kComponentMissing, ExitCode::kNoOutput},
    {conversion::kNoOutputFolder, ExitCode::kNoOutput}, {conversion::kStoreNotMade, ExitCode::kNoOutput},
    {conversion::kNotEnoughSpace, ExitCode::kNoOutput}, {conversion::kStoreNotWritten, ExitCode::kInputOutput},
    {conversion::kDiskFull, ExitCode::kInputOutput},
};

}  // namespace

ExitCode ExitCodeOfBox(text::TextView message) {
  for (const BoxRow& row : kBoxes) {
    if (message.starts_with(row.beginning)) return row.code;
  }
  return ExitCode::kAborted;
}

}  // namespace velmora::cli
