#include "recovery/recovery_fixture.h"

namespace velmora::recovery {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool IsFolder(const engine::Event& event, std::uint32_t nid) {
  const auto* reached = std::get_if<engine::FolderReached>(&event);
  return reached != nullptr && reached->nid == nid;
}

class RecoverOrphansTest : public RecoveryTest {
 protected:
  RecoverOrphansTest() { AddTopAndInbox(); }

  /// What the Smart Scan found, with the empty element that always ends it.
  void Orphans(std::vector<engine::OrphanBlock> orphans) {
    engine_.orphanBlockCount = static_cast<std::uint32_t>(orphans.size());
    orphans.push_back({});
    engine_.orphans = std::move(orphans);
  }

  std::vector<std::string> OrphanFolder() {
    auto made = Trace("AddFolder");
    std::erase_if(made, [](const std::string& line) { return line.find("Orphaned Mails") == std::string::npos; });
    return made;
  }
};

TEST_F(RecoverOrphansTest, ANormalScanMakesNoOrphanFolder) {
  Recover();
  EXPECT_THAT(OrphanFolder(), IsEmpty());
}

TEST_F(RecoverOrphansTest, ASmartScanOfAHealthyStoreMakesAnEmptyOrphanFolder) {
  Orphans({});
  Recover();
  EXPECT_THAT(OrphanFolder(),
              ElementsAre(R"({"op":"AddFolder","parent":"\\\\out","name":"Orphaned Mails","type":null})"));
  EXPECT_THAT(Trace(), IsEmpty());
  EXPECT_TRUE(state_.report.skipped.empty() || !state_.report.skipped.contains(SkipReason::kNoFolder));
}

TEST_F(RecoverOrphansTest, EveryOrphanGoesToTheOneFolderWhateverItsKind) {
  const std::uint32_t contact = AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Contact")}));
  const std::uint32_t mail = AddBlock(0x44, HeapBlock({Wide(0x001A, u"IPM.Note")}));
  Orphans({{contact, 0}, {mail, 0}});
  Recover();
  EXPECT_EQ(OrphanFolder().size(), 1u) << "the second orphan finds the folder";
  EXPECT_THAT(Trace("AddItem"),
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Orphaned Mails","class":"IPM.Contact"})",
                          R"({"op":"AddItem","id":2,"folder":"\\\\out\\Orphaned Mails","class":"IPM.Note"})"));
  EXPECT_EQ(Trace("Save").size(), 2u);
  EXPECT_EQ(std::ranges::count(Numbers<engine::FolderReached>(), 0x1122u), 1);
}

TEST_F(RecoverOrphansTest, TheMarkerCarriesTheNameOfTheFolder) {
  Orphans({});
  Recover();
  const auto marker = std::ranges::find_if(events_, [](const engine::Event& event) { return IsFolder(event, 0x1122); });
  ASSERT_NE(marker, events_.end());
  EXPECT_EQ(std::get<engine::FolderReached>(*marker).markerName, u"Orphaned Mails");
}

TEST_F(RecoverOrphansTest, AnOrphanOfTheSubNodeKindGivesNothing) {
  Orphans({{0, AddBlock(0x40, SubNodeBlock({{0x671, 0, 0}}))}});
  Recover();
  EXPECT_THAT(Trace(), IsEmpty());
}

TEST_F(RecoverOrphansTest, ARefusedClassStaysRefusedAndAClassThatIsNoneBecomesAMail) {
  Orphans({{AddBlock(0x40, HeapBlock({Wide(0x001A, u"IPM.Configuration.Other")})), 0},
           {AddBlock(0x44, HeapBlock({Wide(0x001A, u"x"), Wide(0x0037, u"Hello")})), 0}});
  Recover();
  EXPECT_THAT(Trace(),
              ElementsAre(R"({"op":"AddItem","id":1,"folder":"\\\\out\\Orphaned Mails","class":"IPM.Note"})",
                          R"({"op":"Put","id":1,"field":"Sent","value":true})",
                          R"({"op":"Put","id":1,"field":"Subject","value":"Hello"})", R"({"op":"Save","id":1})"));
}

TEST_F(RecoverOrphansTest, ABodyAndAnAttachmentComeAlongWithAMailOfTheFallback) {
  const std::uint32_t bid = AddBlock(0x40, HeapBlock({Wide(0x001A, u""), Wide(0x1000, u"body")}));
  Orphans({{bid, 0}});
  Recover();
  EXPECT_THAT(Trace("Put"), testing::Contains(R"({"op":"Put","id":1,"field":"Body","value":"body"})"));
}

TEST_F(RecoverOrphansTest, AnOrphanCountsAsOneInTheFolderOfTheLastMessagePlaced) {
  std::vector<text::Text> names;
  hook_ = [&](ConversionScope& scope, const PropertyRecord& record) {
    if (record.wPropId == 0x0E07) names.push_back(scope.currentFolderName);
  };
  const std::vector<RecordSpec> mail = {Wide(0x001A, u"IPM.Note"), Value(0x0E07, 3, 1)};
  Orphans({{AddBlock(0x40, HeapBlock(mail)), 0}});
  AddFolder(0x8062, kTop, u"Sent");
  AddMessage(mail, 0, kInbox);
  AddMessage(mail, 0, 0x8062);
  AddMessage(mail, 0, 0x9999);
  Recover();
  EXPECT_THAT(names, ElementsAre(u"Inbox", u"Sent", u"Sent")) << "a message without a place leaves no name";
}

TEST_F(RecoverOrphansTest, NothingIsDoneOnceTheRunHasEndedOrWasAborted) {
  Orphans({});
  Settle();
  run_.runAborted = true;
  RecoverOrphans(state_, engine_, run_);
  EXPECT_THAT(events_, IsEmpty());
}

TEST_F(RecoverOrphansTest, FewNodesAreCountedAndTheCountIsFilledUpToOneHundred) {
  AddMessage({Wide(0x001A, u"IPM.Note")});
  AddMessage({Wide(0x001A, u"IPM.Note")});
  Settle();
  RecoverOrphans(state_, engine_, run_);  // five nodes, none taken out as a folder
  const auto progress = Numbers<engine::Progress>();
  ASSERT_EQ(progress.size(), 101u) << "the fill begins with the count";
  for (std::uint32_t i = 0; i <= 100; ++i) EXPECT_EQ(progress[i], i);
}

TEST_F(RecoverOrphansTest, ManyNodesAreReportedInPercentAndTheFillBeginsAtZeroWithoutOrphans) {
  for (std::uint32_t i = 0; i < 300; ++i) AddNode(0x21, 0, 0, 0x22);
  Settle();
  RecoverOrphans(state_, engine_, run_);
  const auto progress = Numbers<engine::Progress>();
  ASSERT_EQ(progress.size(), 101u + 101);
  for (std::uint32_t i = 0; i <= 100; ++i) {
    EXPECT_EQ(progress[i], i);
    EXPECT_EQ(progress[101 + i], i) << "the fill";
  }
}

TEST_F(RecoverOrphansTest, WithOrphansTheFillBeginsAtTheirLastPercentage) {
  for (std::uint32_t i = 0; i < 300; ++i) AddNode(0x21, 0, 0, 0x22);
  Orphans(std::vector<engine::OrphanBlock>(100, {0x7777, 0}));
  Settle();
  RecoverOrphans(state_, engine_, run_);
  // 403 units, 4 to a percent: the last of the hundred orphans' reports is that of unit 402.
  const auto progress = Numbers<engine::Progress>();
  EXPECT_EQ(progress.size(), 101u) << "nothing is said anew";
  EXPECT_EQ(progress.back(), 100u);
}

TEST_F(RecoverOrphansTest, PercentagesAboveOneHundredAreNotReportedForNodes) {
  for (std::uint32_t i = 0; i < 147; ++i) AddNode(0x21, 0, 0, 0x22);
  Settle();
  ASSERT_EQ(engine_.nodeCount, 150u);
  state_.usedNodes.countedOff = 1;  // folders were taken off the count, a first node that stays was not off the list
  RecoverOrphans(state_, engine_, run_);
  const auto progress = Numbers<engine::Progress>();
  EXPECT_EQ(progress[100], 100u);
  EXPECT_EQ(progress[101], 0u) << "the fill follows at once";
}

TEST_F(RecoverOrphansTest, TheFoldersAreAnnouncedAtTheEnd) {
  AddFolder(0x8062, kInbox, u"Old");
  Recover();
  EXPECT_THAT(Numbers<engine::FolderReached>(), ElementsAre(kInbox, 0x8062));
  EXPECT_TRUE(std::holds_alternative<engine::FolderReached>(events_.back()));
}

TEST_F(RecoverOrphansTest, TheStageComesFirst) {
  Settle();
  RecoverOrphans(state_, engine_, run_);
  EXPECT_EQ(std::get<engine::StageBegun>(events_.front()).stage, 8u);
}

TEST_F(RecoverOrphansTest, AnEndOfTheRunAmongTheOrphansLeavesOutFillAndAnnouncement) {
  Orphans({{0x7777, 0}, {0x7777, 0}});
  onEvent_ = [this](const engine::Event& event) {
    if (IsFolder(event, 0x1122)) run_.runEnded = true;
  };
  Recover();
  EXPECT_THAT(Numbers<engine::FolderReached>(), ElementsAre(0x1122));
}

TEST_F(RecoverOrphansTest, TheLogNamesTheFolder) {
  run_.log = this;
  Orphans({});
  Recover();
  EXPECT_TRUE(log_.ends_with(u"\r\nRecovering Orphaned Mails \r\n"));
}

}  // namespace
}  // namespace velmora::recovery
