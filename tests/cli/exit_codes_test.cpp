#include "cli/exit_codes.h"

#include <gtest/gtest.h>

#include <set>

#include "conversion/messages.h"

namespace velmora::cli {
namespace {

TEST(ExitCodes, EveryCodeHasItsNumber) {
  std::set<int> codes;
  for (const ExitCodeRow& row : kExitCodes) codes.insert(static_cast<int>(row.code));
  EXPECT_EQ(codes, (std::set<int>{0, 1, 3, 64, 65, 66, 73, 74, 130}));
}

TEST(ExitCodes, FollowFromTheTextThatEndedTheRun) {
  EXPECT_EQ(ExitCodeOfBox(u"Source file could not open.Make sure that another application is not using. "),
            ExitCode::kNoSource);
  EXPECT_EQ(ExitCodeOfBox(u"Pst/Ost file is not valid."), ExitCode::kNotValid);
  for (const text::TextView text :
       {u"Some problem is encounterd to create temporary file.",
        u"Some component is missing.Please reinstall the application.",
        u"Some component is missing.Please reinstall the application. ",
        u"Unable to create folder to save recovered .pst file.\nPlease select another location to save recovered .pst "
        u"file.",
        u"Not enough free disk space available to save converted .pst file.\nPlease start the process again by "
        u"selecting another destination path."}) {
    EXPECT_EQ(ExitCodeOfBox(text), ExitCode::kNoOutput) << text::ToUtf8(text);
  }
  EXPECT_EQ(ExitCodeOfBox(conversion::kStoreNotMade), ExitCode::kNoOutput);
}

TEST(ExitCodes, ADiskThatFillsUpIsToldFromOneThatWasFull) {
  EXPECT_EQ(ExitCodeOfBox(text::Text(conversion::kDiskFull) + u"/out/x.pst"), ExitCode::kInputOutput);
  EXPECT_EQ(ExitCodeOfBox(text::Text(conversion::kStoreNotWritten) + u"/out/x.pst"), ExitCode::kInputOutput);
}

TEST(ExitCodes, AnUnknownTextMeansAnAbortedRun) { EXPECT_EQ(ExitCodeOfBox(u"?"), ExitCode::kAborted); }

}  // namespace
}  // namespace velmora::cli
