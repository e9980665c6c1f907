#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

class RecoveryReportTest : public RecoveryTest {
 protected:
  RecoveryReportTest() { AddTopAndInbox(); }
};

TEST_F(RecoveryReportTest, FoldersAreListedAheadOfOrderingAndThinning) {
  Recover();
  ASSERT_EQ(state_.report.folders.size(), 2u);
  EXPECT_EQ(state_.report.folders[0].nid, kTop);
  EXPECT_EQ(state_.report.folders[0].parentNid, 0x122u);
  EXPECT_EQ(state_.report.folders[1].name, u"Inbox");
}

TEST_F(RecoveryReportTest, ItemsAreCountedByTheClassHandedToTheOutput) {
  AddMessage({Wide(0x001A, u"IPM.Note")});
  AddMessage({Wide(0x001A, u"ipm.note")});
  AddMessage({Wide(0x001A, u"IPM.DistList")});
  AddMessage({Wide(0x001A, u"IPM.DistList")});
  Recover();
  EXPECT_THAT(state_.report.items, ElementsAre(Pair(u"IPM.DistList", 2), Pair(u"IPM.Note", 1), Pair(u"ipm.note", 1)));
  EXPECT_THAT(state_.report.lost, IsEmpty());
}

TEST_F(RecoveryReportTest, EveryNodeThatGaveNoItemIsCountedByItsReason) {
  AddNode(0x21, 0x7777, 0, 0x22);
  AddNode(0x21, AddBlock(NewBid(), BytesOf("no heap at all")), 0, 0x22);
  AddMessage({Wide(0x0037, u"no class")});
  AddMessage({Wide(0x001A, u"IPM.Configuration.Other")});
  AddMessage({Wide(0x001A, u"IPM.Note")}, 0, 0x9999);
  Recover();
  EXPECT_THAT(
      state_.report.skipped,
      UnorderedElementsAre(Pair(SkipReason::kNoBlock, 2), Pair(SkipReason::kBadHeap, 1), Pair(SkipReason::kNoClass, 1),
                           Pair(SkipReason::kRefusedClass, 1), Pair(SkipReason::kNoFolder, 1)));
}

TEST_F(RecoveryReportTest, ANodeOfTheMessageTypeIsLostWhateverItsBlock) {
  AddNode(0x200024, 0x7777, 0, kInbox);
  AddNode(0x200028, 0x7777, 0, kInbox);
  Recover();
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x200024u);
  EXPECT_EQ(state_.report.lost[0].bidData, 0x7777u);
  EXPECT_EQ(state_.report.lost[0].messageClass, u"");
  EXPECT_FALSE(state_.report.lost[0].reason.empty());
}

TEST_F(RecoveryReportTest, ANodeOfAnotherTypeIsLostIfItsClassIsOneThatIsConverted) {
  AddMessage({Wide(0x001A, u"IPM.Note")}, 0, 0x9999, 0x200028);
  AddMessage({Wide(0x001A, u"damaged")}, 0, 0x9999, 0x200048);
  Recover();
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x200028u);
  EXPECT_EQ(state_.report.lost[0].messageClass, u"IPM.Note");
}

TEST_F(RecoveryReportTest, AClassRefusedByRuleIsNoLossWhereverItLies) {
  AddMessage({Wide(0x001A, u"IPM.Configuration.Other")});
  AddMessage({Wide(0x001A, u"IPM.Configuration.Other")}, 0, 0x9999);
  Recover();
  EXPECT_THAT(state_.report.lost, IsEmpty());
  EXPECT_THAT(state_.report.skipped, testing::Contains(Pair(SkipReason::kRefusedClass, 2)));
}

TEST_F(RecoveryReportTest, AnOrphanThatIsNoMessageIsCountedAndTheElementThatEndsTheListIsNot) {
  engine_.orphans = {{AddBlock(NewBid(), HeapBlock({})), 0}, {}};
  Recover();
  EXPECT_THAT(state_.report.skipped, testing::Contains(Pair(SkipReason::kNoClass, 1)));
  EXPECT_THAT(state_.report.lost, IsEmpty());
}

TEST_F(RecoveryReportTest, AnAttachmentWhoseBlockIsGoneIsLost) {
  AddMessage({Wide(0x001A, u"IPM.Note")},
             AddBlock(NewListBid(), SubNodeBlock({{0x671, 0, 0}, {0x692, 0x7777, 0}, {0x8025, 0x7777, 0}})));
  Recover();
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].nid, 0x8025u);
}

}  // namespace
}  // namespace velmora::recovery
