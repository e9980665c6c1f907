#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using engine::StoreKind;
using testing::ElementsAre;
using testing::IsEmpty;

/// A name-to-id map in which 0x8001 stands for 0x8503.
Bytes MapOfOneName() {
  Bytes bucket;
  for (int i = 0; i < 2; ++i) {
    AppendNumber<std::uint32_t>(bucket, 0x8503);
    AppendNumber<std::uint16_t>(bucket, 0);
    AppendNumber<std::uint16_t>(bucket, 1);
  }
  std::vector<RecordSpec> specs = {Data(2, 0x0102, Bytes(16)), Data(0x1000, 0x0102, bucket)};
  while (specs.size() < 60) specs.push_back(Value(1, 3, 0));
  return HeapBlock(specs);
}

class RecoverFoldersTest : public RecoveryTest {
 protected:
  void Folders() {
    Settle();
    RecoverFolders(state_, engine_, run_);
  }

  /// Name and class of each folder as recovered.
  std::vector<std::pair<text::Text, text::Text>> Recovered() const {
    std::vector<std::pair<text::Text, text::Text>> folders;
    for (const FolderRecord& folder : state_.report.folders) {
      folders.emplace_back(folder.name, folder.containerClass);
    }
    return folders;
  }

  std::vector<std::uint32_t> NodesLeft() const {
    std::vector<std::uint32_t> nids;
    const auto& nodes = engine_.nodes.Records();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      if (!state_.usedNodes.IsUnlinked(i)) nids.push_back(nodes[i].nid);
    }
    return nids;
  }
};

TEST_F(RecoverFoldersTest, AFolderIsANodeWithADisplayNameAndNoMessageClass) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"Inbox", u"IPF.Note");
  AddMessage({Wide(0x001A, u"IPM.Note"), Wide(0x3001, u"no folder")});
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"Inbox", u"IPF.Note")));
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x200024));
}

TEST_F(RecoverFoldersTest, NothingIsDoneOnceTheRunHasEndedOrWasAborted) {
  AddTopAndInbox();
  run_.runAborted = true;
  Folders();
  run_.runAborted = false;
  run_.runEnded = true;
  Folders();
  EXPECT_THAT(events_, IsEmpty());
  EXPECT_EQ(NodesLeft().size(), 3u);
}

TEST_F(RecoverFoldersTest, AFolderWhoseBlockIsFoundOnlyThroughTheLowerIdIsRecovered) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Wide(0x3001, u"Inbox")})) + 1, 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"Inbox", u"IPF.Note")));
}

TEST_F(RecoverFoldersTest, ANodeWithoutAParentIsTakenOutWhateverItIs) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x200024, AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Note")})), 0, 0);
  AddNode(0x8042, AddBlock(0x44, HeapBlock({Wide(0x3001, u"Inbox")})), 0, 0);
  Folders();
  EXPECT_THAT(Recovered(), IsEmpty());
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21));
  EXPECT_EQ(state_.usedNodes.Left(engine_), 1u);
}

TEST_F(RecoverFoldersTest, AFolderThatIsItsOwnParentIsNone) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x122, 0x122, u"Root");
  Folders();
  EXPECT_THAT(Recovered(), IsEmpty());
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x122));
}

TEST_F(RecoverFoldersTest, TheFirstElementOfTheListStaysLinkedThoughItIsCountedOff) {
  AddFolder(0x8042, 0x122, u"Inbox");
  AddFolder(0x8062, 0x122, u"Sent");
  ASSERT_EQ(engine_.nodeCount, 2u);
  Folders();
  EXPECT_EQ(Recovered().size(), 2u);
  EXPECT_THAT(NodesLeft(), ElementsAre(0x8042));
  EXPECT_EQ(state_.usedNodes.Left(engine_), 0u);
}

TEST_F(RecoverFoldersTest, AnEmptyNameIsNoFolderAndItsNodeStays) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Value(0x3001, 0x001F, 0)}, {.freeCount = 1})), 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), IsEmpty());
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x8042));
}

TEST_F(RecoverFoldersTest, ANameThatDoesNotLookLikeTextIsEmpty) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"\x0001\x0100");
  AddFolder(0x8062, 0x122, u"日本語");
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"日本語", u"IPF.Note")));
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x8042));
}

TEST_F(RecoverFoldersTest, AnEightBitNameAndAClassGetNoSuchTest) {
  UseFormat(FORMAT_ANSI, StoreKind::kPst);
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Narrow(0x3001, "\x01\x02"), Narrow(0x3613, "\x03")})), 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"\x0001\x0002", u"\x0003")));
}

TEST_F(RecoverFoldersTest, AClassThroughIdentifierZeroIsEmptyAndBecomesTheDefault) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Wide(0x3001, u"a"), Value(0x3613, 0x1F, 0)}, {.freeCount = 1})), 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"a", u"IPF.Note")));
}

TEST_F(RecoverFoldersTest, IdentifierZeroIsEmptyThoughTheWordThatItWouldLeadToIsOutOfBounds) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042,
          AddBlock(NewBid(), HeapBlock({Wide(0x3001, u"Inbox"), Value(0x3613, 0x001F, 0)}, {.freeCount = 0xFFFF})), 0,
          0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"Inbox", u"IPF.Note")));
}

TEST_F(RecoverFoldersTest, ANameOrAClassOutOfBoundsMakesTheBlockNoFolder) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Value(0x3001, 0x1F, 0x803F)})), 0, 0x122);
  AddNode(0x8062, AddBlock(0x44, HeapBlock({Wide(0x3001, u"a"), Value(0x3613, 0x1F, 0x803F)})), 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), IsEmpty());
}

TEST_F(RecoverFoldersTest, TheClassEndsTheWalk) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Wide(0x3613, u"IPF.Task"), Wide(0x3001, u"too late")})), 0, 0x122);
  AddNode(0x8062, AddBlock(0x44, HeapBlock({Wide(0x3001, u"a"), Wide(0x3613, u"IPF.Task"), Wide(0x001A, u"IPM.Note")})),
          0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"a", u"IPF.Task")));
}

TEST_F(RecoverFoldersTest, OnlyTheLengthOfTheTreeHeaderIsLookedAt) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x8042, AddBlock(0x40, HeapBlock({Wide(0x3001, u"a")}, {.marker = 0})), 0, 0x122);
  AddNode(0x8062, AddBlock(0x44, HeapBlock({Wide(0x3001, u"b")}, {.rootLength = 12})), 0, 0x122);
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"a", u"IPF.Note")));
}

TEST_F(RecoverFoldersTest, TheFirstBlockOfAFolderWinsAndASecondNodeStaysInTheListWithoutProgress) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"new");
  AddFolder(0x8042, 0x122, u"old");
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"new", u"IPF.Note")));
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x8042));
  EXPECT_THAT(Numbers<engine::Progress>(), ElementsAre(1, 2));
}

TEST_F(RecoverFoldersTest, ASecondNodeWithoutAParentIsNoSecondFolderAndIsTakenOut) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"Inbox");
  AddFolder(0x8042, 0, u"Inbox");
  Folders();
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21));
}

TEST_F(RecoverFoldersTest, TheTopFolderIsKnownByItsExactNameAndTheLastOneCounts) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8022, 0x122, u"Top of Personal Folders");
  AddFolder(0x8042, 0x122, u"top of personal folders");
  Folders();
  EXPECT_EQ(state_.topFolderNid, 0x8022u);
}

TEST_F(RecoverFoldersTest, WithoutATopFolderItsIdentifierStaysZero) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"Inbox");
  Folders();
  EXPECT_EQ(state_.topFolderNid, 0u);
}

TEST_F(RecoverFoldersTest, TheNameMapIsReadThoughItsNodeFailsAllTestsOfAFolder) {
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x61, AddBlock(0x40, MapOfOneName()), 0, 0);
  Folders();
  EXPECT_EQ(state_.namedProps.TranslateNamedId(0x8001), 0x8503u);
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21));
}

TEST_F(RecoverFoldersTest, WhatStandsAheadOfTheNodeThatToldTheEncodingIsNoFolder) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x8062, u"Inbox");
  AddFolder(0x8062, 0x122, u"Sent");
  engine_.encodingFoundAt = 2;
  Folders();
  EXPECT_THAT(Recovered(), ElementsAre(std::pair(u"Sent", u"IPF.Note")));
  EXPECT_THAT(NodesLeft(), ElementsAre(0x21, 0x8042));
  ASSERT_EQ(state_.report.lost.size(), 1u);
  EXPECT_EQ(state_.report.lost[0].reason, u"folder: the encoding of the store could not be told from its block");
}

TEST_F(RecoverFoldersTest, ANameMapAheadOfTheNodeThatToldTheEncodingIsReadAsItIsStored) {
  engine_.blockEncoding = CryptMethod::kPermute;
  AddNode(0x21, 0, 0, 0x22);
  AddNode(0x61, AddBlock(0x40, MapOfOneName()), 0, 0);
  engine_.encodingFoundAt = 2;
  Folders();
  EXPECT_EQ(state_.namedProps.TranslateNamedId(0x8001), 0x8503u);

  state_.namedProps.Clear();
  engine_.encodingFoundAt = 1;
  Folders();
  EXPECT_EQ(state_.namedProps.TranslateNamedId(0x8001), 0x8001u) << "decoded, it is no map";
}

TEST_F(RecoverFoldersTest, WithoutAnEncodingNoBlockIsReadAsAFolder) {
  AddNode(0x21, 0, 0, 0x22);
  AddFolder(0x8042, 0x122, u"Inbox");
  engine_.encodingFoundAt = 2;  // as many as there are nodes
  Folders();
  EXPECT_THAT(Recovered(), IsEmpty());
}

TEST_F(RecoverFoldersTest, StageSixThenProgressThenStageSeven) {
  AddTopAndInbox();
  Folders();
  ASSERT_EQ(events_.size(), 6u);
  EXPECT_EQ(std::get<engine::StageBegun>(events_[0]).stage, 6u);
  for (std::uint32_t i = 1; i <= 3; ++i) {
    EXPECT_EQ(std::get<engine::Progress>(events_[i]), (engine::Progress{i, engine::Phase::kFolders}));
  }
  EXPECT_EQ(std::get<engine::StageBegun>(events_[4]).stage, 7u);
  EXPECT_TRUE(std::holds_alternative<engine::FoldersKnown>(events_[5]));
}

TEST_F(RecoverFoldersTest, ManyNodesAreReportedInPercent) {
  for (std::uint32_t i = 0; i < 300; ++i) AddNode(0x200000 + 4 * i, 0, 0, 0x22);
  Folders();
  const auto progress = Numbers<engine::Progress>();
  ASSERT_EQ(progress.size(), 101u) << "each number once";
  for (std::uint32_t i = 0; i <= 100; ++i) EXPECT_EQ(progress[i], i);
}

TEST_F(RecoverFoldersTest, TheLogSaysWhatComesNext) {
  run_.log = this;
  AddTopAndInbox();
  Folders();
  EXPECT_EQ(log_, u"\r\n\r\n---------Recovering name of folders and mail items---------\r\nInbox");
}

TEST_F(RecoverFoldersTest, AStopLeavesTheWalkAtOnce) {
  AddTopAndInbox();
  onEvent_ = [this](const engine::Event& event) {
    if (std::holds_alternative<engine::Progress>(event)) run_.control.RequestStop();
  };
  Settle();
  EXPECT_THROW(RecoverFolders(state_, engine_, run_), engine::RunStopped);
  EXPECT_THAT(Numbers<engine::Progress>(), ElementsAre(1));
  EXPECT_THAT(Numbers<engine::StageBegun>(), ElementsAre(6));
}

TEST_F(RecoverFoldersTest, AnEndOfTheRunEndsTheWalk) {
  AddTopAndInbox();
  onEvent_ = [this](const engine::Event& event) {
    if (std::holds_alternative<engine::Progress>(event)) run_.runEnded = true;
  };
  Folders();
  EXPECT_THAT(Numbers<engine::Progress>(), ElementsAre(1));
  EXPECT_THAT(Trace("AddFolder"), IsEmpty());
}

}  // namespace
}  // namespace velmora::recovery
