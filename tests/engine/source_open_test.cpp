#include <fstream>

#include "engine/run_fixture.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

using SourceOpenTest = RunTest;

TEST_F(SourceOpenTest, APercentIsAHundredthOfTheFileRoundedDown) {
  std::ofstream(folder_ / "a.pst") << std::string(1299, 'x');
  OpenSource(state_, run_, folder_ / "a.pst");
  EXPECT_EQ(state_.percentBase, 12u);
  EXPECT_EQ(recorder_.Stages(), (std::vector<std::uint32_t>{1}));
}

TEST_F(SourceOpenTest, ASourceThatCannotBeOpenedEndsTheWorkerAfterItsNotice) {
  EXPECT_THROW(OpenSource(state_, run_, folder_ / "missing.pst"), WorkerEnded);
  EXPECT_EQ(recorder_.Notices(), (std::vector<NoticeKind>{NoticeKind::kSourceNotOpened}));
  EXPECT_EQ(state_.source, nullptr);
  EXPECT_FALSE(run_.runAborted);
}

TEST_F(SourceOpenTest, AFolderIsNoSource) { EXPECT_THROW(OpenSource(state_, run_, folder_), WorkerEnded); }

TEST_F(SourceOpenTest, NothingOfAnEarlierRunStays) {
  state_.nodeCount = 7;
  state_.blockEncoding = CryptMethod::kCyclic;
  state_.encodingUnknown = false;
  state_.storeKind = StoreKind::kOst;
  std::ofstream(folder_ / "a.pst") << "x";
  OpenSource(state_, run_, folder_ / "a.pst");
  EXPECT_EQ(state_.nodeCount, 0u);
  EXPECT_EQ(state_.blockEncoding, CryptMethod::kNone);
  EXPECT_TRUE(state_.encodingUnknown);
  EXPECT_EQ(state_.storeKind, StoreKind::kNone);
}

}  // namespace
}  // namespace velmora::engine
