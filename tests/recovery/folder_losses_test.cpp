// What the report says of folders that are not in the new store, or not where they were.
#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kRoot = 0x122;

class FolderLossesTest : public RecoveryTest {
 protected:
  FolderLossesTest() { AddTopAndInbox(); }

  /// Nid and reason of each lost folder.
  std::vector<std::pair<std::uint32_t, std::string>> Lost() {
    Recover();
    std::vector<std::pair<std::uint32_t, std::string>> lost;
    for (const LostObject& object : state_.report.lost) {
      EXPECT_EQ(object.kind, LossKind::kFolder);
      lost.emplace_back(object.nid, text::ToUtf8(object.reason));
    }
    return lost;
  }
  static auto Is(std::uint32_t nid, const std::string& reason) { return testing::Pair(nid, reason); }
};

TEST_F(FolderLossesTest, FoldersThatKeepTheirPlaceAreNoLoss) {
  AddFolder(0x8062, kInbox, u"Old");
  AddFolder(0x8082, 0x8062, u"Older");
  AddFolder(0x80A2, kTop, u"CONTACTS");  // there from the start, and taken as it is
  AddFolder(0x80C2, kRoot, u"Views");
  AddFolder(0x80E2, 0x80C2, u"A view");  // its parent is left out by rule
  AddFolder(0x80E3, kTop, u"");          // a search folder
  AddFolder(kRoot, kRoot, u"");
  AddFolder(0x8102, kRoot, u"");
  EXPECT_THAT(Lost(), IsEmpty());
}

TEST_F(FolderLossesTest, AFolderWithoutANameIsLostAndItsSubFoldersStandAtTheTop) {
  AddFolder(0x8062, kTop, u"");
  AddFolder(0x8082, 0x8062, u"Below");
  AddFolder(0x80A2, 0x8082, u"Deeper");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062, "folder: its name is empty or does not look like text"),
                                  Is(0x8082,
                                     "folder \"Below\": its parent 0x8062 is no folder that could be read: it "
                                     "stands at the top")));
}

TEST_F(FolderLossesTest, AFolderWhoseNameDoesNotLookLikeTextIsLost) {
  AddFolder(0x8062, kTop, u"\x0001\x0100");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062, "folder: its name is empty or does not look like text")));
}

TEST_F(FolderLossesTest, AFolderWhoseNameLiesOutsideOfItsBlockIsLost) {
  AddNode(0x8062, AddBlock(NewBid(), HeapBlock({Value(0x3001, 0x1F, 0x803F)})), 0, kTop);
  AddNode(0x8082, AddBlock(NewBid(), HeapBlock({Value(0x3602, 3, 0)})), 0, kTop);
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062, "folder: its name or class does not stand in its block"),
                                  Is(0x8082, "folder: it has no name")));
}

TEST_F(FolderLossesTest, AFolderWhoseBlockIsGoneIsLostUnlessAnotherNodeGivesIt) {
  AddNode(0x8062, 0x7774, 0, kTop);
  AddNode(0x8082, 0x7774, 0, kTop);
  AddFolder(0x8082, kTop, u"There");
  AddNode(0x80A2, 0, 0, kTop);
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062, "folder: its data block 0x7774 was not found"),
                                  Is(0x80A2, "folder: it has no data block")));
  EXPECT_EQ(state_.report.lost[0].bidData, 0x7774u);
}

TEST_F(FolderLossesTest, ABackslashInANamePutsAFolderBelowAnotherOrNowhere) {
  AddFolder(0x8062, kTop, u"Inbox\\Old");
  AddFolder(0x8082, kTop, u"no\\way");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062,
                                     "folder \"Inbox\\Old\": the backslash in its name put it below another "
                                     "folder"),
                                  Is(0x8082,
                                     "folder \"no\\way\": not made: the backslash in its name leads to a folder "
                                     "that is not there")));
}

TEST_F(FolderLossesTest, TheSubFoldersOfAFolderThatWasNotMadeAreLostToo) {
  AddFolder(0x8062, kTop, u"ends\\");
  AddFolder(0x8082, 0x8062, u"Below");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062,
                                     "folder \"ends\\\": not made: the backslash in its name leads to a folder "
                                     "that is not there"),
                                  Is(0x8082,
                                     "folder \"Below\": not made: it has no parent in the new store, or no name "
                                     "that a folder can have")));
}

TEST_F(FolderLossesTest, SiblingsOfOneNameMerge) {
  AddFolder(0x8062, kTop, u"INBOX");
  AddFolder(0x8082, 0x8062, u"Old");
  AddFolder(0x80A2, kInbox, u"old");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062, "folder \"INBOX\": merged with folder 0x8042, which has the same path"),
                                  Is(0x8082, "folder \"Old\": merged with folder 0x80a2, which has the same path")));
}

TEST_F(FolderLossesTest, TheSubtreesBelowTwoFoldersOfTheRootAreOneByRuleButNotWhatStandsInThem) {
  AddFolder(0x8062, kRoot, u"Root - Mailbox");
  AddFolder(0x8082, kRoot, u"Root - Public");
  AddFolder(0x80A2, 0x8062, u"Subtree");
  AddFolder(0x80C2, 0x8082, u"Subtree");
  AddFolder(0x80E2, 0x80A2, u"Old");
  AddFolder(0x8102, 0x80C2, u"Old");
  AddFolder(0x8122, 0x8062, u"subtree");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8122, "folder \"subtree\": merged with folder 0x80a2, which has the same path"),
                                  Is(0x8102, "folder \"Old\": merged with folder 0x80e2, which has the same path")));
}

TEST_F(FolderLossesTest, ANodeOfAnotherTypeThatHasANameIsNoFolderToLose) {
  AddFolder(0x41, 0x7, u"The store's own name");
  EXPECT_THAT(Lost(), IsEmpty());
}

TEST_F(FolderLossesTest, ASubFolderThatMovesToTheTopMayMergeThere) {
  AddFolder(0x8062, 0x9002, u"Inbox");
  EXPECT_THAT(Lost(), ElementsAre(Is(0x8062,
                                     "folder \"Inbox\": its parent 0x9002 is no folder that could be read: it "
                                     "stands at the top"),
                                  Is(0x8062, "folder \"Inbox\": merged with folder 0x8042, which has the same path")));
}

TEST_F(FolderLossesTest, WhatAnUpperPageOfTheNodeTreeIsReadAsIsNoLoss) {
  engine_.nodes.Insert({0x200024, 0x7774, 0, kInbox, true});
  engine_.nodes.Insert({0x8062, 0x7774, 0, kTop, true});
  engine_.nodeCount += 2;
  EXPECT_THAT(Lost(), IsEmpty());
  EXPECT_EQ(state_.report.skipped[SkipReason::kNoBlock], 3u) << "counted like every node that gave nothing";
}

TEST_F(FolderLossesTest, WhatAnItemLacksThatAnUpperPageLeadsToIsNoLossBesides) {
  const std::uint32_t bid =
      AddBlock(NewBid(), HeapBlock({Wide(0x001A, u"IPM.Note"), Value(0x1000, 0x1F, 0x803F), Value(0x0E07, 3, 0x11)}));
  engine_.nodes.Insert({0x41, bid, 0x7776, kInbox, true});
  ++engine_.nodeCount;
  EXPECT_THAT(Lost(), IsEmpty());
  EXPECT_EQ(Trace("Save").size(), 1u) << "the rules make an item of it all the same";
}

TEST_F(FolderLossesTest, TheListOfLossesIsBoundedOverTheWholeRun) {
  for (std::uint32_t i = 0; i < 9000; ++i) AddNode(0x10002 + 32 * i, 0x7774, 0, kTop);
  for (std::uint32_t i = 0; i < 9000; ++i) AddNode(0x200024 + 32 * i, 0x7774, 0, kInbox);
  Recover();
  EXPECT_LT(state_.report.lost.size(), 12000u);
  EXPECT_EQ(state_.report.lost.size() + state_.report.lostNotListed, 18000u);
}

}  // namespace
}  // namespace velmora::recovery
