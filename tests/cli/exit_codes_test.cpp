#include "cli/exit_codes.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora::cli {
namespace {

using engine::NoticeKind;

TEST(ExitCodes, EveryCodeHasItsNumber) {
  std::set<int> codes;
  for (const ExitCodeRow& row : kExitCodes) codes.insert(static_cast<int>(row.code));
  EXPECT_EQ(codes, (std::set<int>{0, 1, 3, 64, 65, 66, 73, 74, 130}));
}

TEST(ExitCodes, FollowFromTheKindOfWhatEndedTheRun) {
  EXPECT_EQ(ExitCodeOf(NoticeKind::kSourceNotOpened), ExitCode::kNoSource);
  EXPECT_EQ(ExitCodeOf(NoticeKind::kNotValid), ExitCode::kNotValid);
  for (const NoticeKind kind : {NoticeKind::kNoIndexFile, NoticeKind::kComponentMissing, NoticeKind::kComponentFailed,
                                NoticeKind::kNoOutputFolder, NoticeKind::kNotEnoughSpace, NoticeKind::kStoreNotMade}) {
    EXPECT_EQ(ExitCodeOf(kind), ExitCode::kNoOutput) << static_cast<int>(kind);
  }
}

TEST(ExitCodes, ADiskThatFillsUpIsToldFromOneThatWasFull) {
  EXPECT_EQ(ExitCodeOf(NoticeKind::kDiskFull), ExitCode::kInputOutput);
  EXPECT_EQ(ExitCodeOf(NoticeKind::kStoreNotWritten), ExitCode::kInputOutput);
}

TEST(ExitCodes, WhatIsNoFailureOfItsOwnMeansAnAbortedRun) {
  EXPECT_EQ(ExitCodeOf(NoticeKind::kAborted), ExitCode::kAborted);
  EXPECT_EQ(ExitCodeOf(NoticeKind::kRegistering), ExitCode::kAborted);
}

}  // namespace
}  // namespace velmora::cli
