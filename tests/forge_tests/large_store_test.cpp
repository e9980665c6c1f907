// The stores that measurements are made with hold what they are said to hold.
#include "bench/large_store.h"

#include <gtest/gtest.h>

#include "forge_tests/peers.h"

namespace velmora::bench {
namespace {

using forge::CountFiles;
using forge::RunIn;
using forge::TextOf;

class LargeStore : public testing::Test {
 protected:
  LargeStoreCounts Make(const LargeStoreOptions& options) { return MakeLargeStore(folder_.path() / "s.pst", options); }

  bool Check(const std::string& options) {
    return RunIn(folder_, "python3 '" + (forge::ToolsFolder() / "pstcheck.py").string() + "' " + options + " s.pst");
  }

  int ExportedMessages() {
    EXPECT_TRUE(RunIn(folder_, "pffexport -q -m items -t out s.pst")) << TextOf(folder_.path() / "output");
    return CountFiles(folder_.path() / "out.export", "OutlookHeaders.txt");
  }

  forge::ScratchFolder folder_;
};

TEST_F(LargeStore, GrowsToTheSizeAskedFor) {
  const LargeStoreCounts counts = Make({.bytes = 4 << 20});
  EXPECT_GT(counts.messages, 100U);
  EXPECT_GT(counts.attachments, 20U);
  EXPECT_GE(std::filesystem::file_size(folder_.path() / "s.pst"), 4U << 20);
  EXPECT_LT(std::filesystem::file_size(folder_.path() / "s.pst"), 5U << 20);
}

TEST_F(LargeStore, HasNothingForTheStrictCheckerToFind) {
  if (forge::ToolsFolder().empty()) GTEST_SKIP() << test::kWithoutTools;
  Make({.bytes = 2 << 20});
  EXPECT_TRUE(Check("--strict")) << TextOf(folder_.path() / "output");
}

TEST_F(LargeStore, IsExportedWhole) {
  if (!forge::IsInstalled("pffexport")) FAIL() << "pffexport is not installed";
  const LargeStoreCounts counts = Make({.items = 90});
  EXPECT_EQ(counts.messages, 90U);
  EXPECT_EQ(ExportedMessages(), 90);
}

TEST_F(LargeStore, SplitsItsMessagesOverFoldersThatEveryReaderLists) {
  if (!forge::IsInstalled("readpst")) FAIL() << "readpst is not installed";
  const LargeStoreCounts counts = Make({.items = 450, .small = true});
  EXPECT_EQ(counts.folders, 3U) << "one of a year, two of a week";
  EXPECT_EQ(counts.attachments, 0U);
  ASSERT_TRUE(RunIn(folder_, "mkdir out && readpst -S -j0 -D -o out s.pst")) << TextOf(folder_.path() / "output");
  EXPECT_EQ(CountFiles(folder_.path() / "out"), 450);
}

TEST_F(LargeStore, TakesOneFolderForAllWhenAsked) {
  const LargeStoreCounts counts = Make({.items = 460, .small = true, .oneFolder = true});
  EXPECT_EQ(counts.folders, 2U);
  if (forge::ToolsFolder().empty()) GTEST_SKIP() << test::kWithoutTools;
  EXPECT_TRUE(Check("--strict")) << TextOf(folder_.path() / "output");
}

TEST_F(LargeStore, RefusesMoreMessagesInAFolderThanAnAnsiStoreCanNumber) {
  EXPECT_THROW(Make({.format = forge::Format::kAnsi, .items = 65'536, .tiny = true, .oneFolder = true}),
               std::runtime_error);
}

}  // namespace
}  // namespace velmora::bench
