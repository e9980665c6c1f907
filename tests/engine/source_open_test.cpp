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
  EXPECT_EQ(recorder_.Messages(), (std::vector<RunMessage>{{MSG_STAGE, 1, 0, u""}}));
}

TEST_F(SourceOpenTest, ASourceThatCannotBeOpenedEndsTheWorkerAfterItsBox) {
  EXPECT_THROW(OpenSource(scan_, run_, folder_ / "missing.pst"), WorkerEnded);
  EXPECT_EQ(
      recorder_.Said(),
      (std::vector<std::string>{
          "32806", "32785", "Error: Source file could not open.Make sure that another application is not using. "}));
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
