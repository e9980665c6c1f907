#include <fstream>

#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

using SourceOpenTest = RunTest;

TEST_F(SourceOpenTest, APercentIsAHundredthOfTheFileRoundedDown) {
  std::ofstream(folder_ / "a.pst") << std::string(1299, 'x');
  OpenSource(scan_, run_, folder_ / "a.pst");
  EXPECT_EQ(scan_.percentBase, 12u);
  EXPECT_EQ(recorder_.Stages(), (std::vector<std::uint32_t>{1}));
}

TEST_F(SourceOpenTest, ASourceThatCannotBeOpenedEndsTheWorkerAfterItsBox) {
  EXPECT_THROW(OpenSource(scan_, run_, folder_ / "missing.pst"), WorkerEnded);
  EXPECT_EQ(recorder_.Notices(), (std::vector<NoticeKind>{NoticeKind::kSourceNotOpened}));
  EXPECT_EQ(Found().source.Size(), 0u);
  EXPECT_FALSE(run_.runAborted);
}

TEST_F(SourceOpenTest, AFolderIsNoSource) { EXPECT_THROW(OpenSource(scan_, run_, folder_), WorkerEnded); }

TEST_F(SourceOpenTest, NothingOfAnEarlierRunStays) {
  Found().nodeCount = 7;
  Found().blockEncoding = CryptMethod::kCyclic;
  scan_.encodingUnknown = false;
  Found().storeKind = StoreKind::kOst;
  std::ofstream(folder_ / "a.pst") << "x";
  OpenSource(scan_, run_, folder_ / "a.pst");
  EXPECT_EQ(Found().nodeCount, 0u);
  EXPECT_EQ(Found().blockEncoding, CryptMethod::kNone);
  EXPECT_TRUE(scan_.encodingUnknown);
  EXPECT_EQ(Found().storeKind, StoreKind::kNone);
}

}  // namespace
}  // namespace velmora::engine
