#include <functional>

#include "recovery/recovery_fixture.h"
#include "store/format/store_nodes.h"

namespace velmora::recovery {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CreateTargetFoldersTest : public RecoveryTest {
 protected:
  void Create(std::vector<FolderRecord> folders) { CreateTargetFolders(state_, std::move(folders), run_); }

  static std::string Made(const std::string& parent, const std::string& name, const std::string& type) {
    return R"({"op":"AddFolder","parent":"\\\\out)" + parent + R"(","name":")" + name + R"(","type":)" + type + "}";
  }
};

TEST_F(CreateTargetFoldersTest, ChildrenOfTheTopFolderGetAPathOfOneLevel) {
  state_.topFolderNid = 10;
  Create({{10, velmora::Value(nid::kRootFolder), u"Top of Personal Folders", u"IPF.Note"},
          {20, 10, u"Inbox", u"IPF.Note"},
          {30, 20, u"Old", u"IPF.Task"}});
  EXPECT_THAT(Trace("AddFolder"),
              ElementsAre(Made("", "Inbox", R"("IPF.Note")"), Made(R"(\\Inbox)", "Old", R"("IPF.Task")")));
}

TEST_F(CreateTargetFoldersTest, FoldersBelowTheRootNodeAreLeftOutAndTheirChildrenHangFromTheTop) {
  Create({{10, velmora::Value(nid::kRootFolder), u"Search Root", u"IPF.Note"}, {20, 10, u"Results", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "Results", R"("IPF.Note")")));
  EXPECT_EQ(state_.folders.Records().size(), 1u);
}

TEST_F(CreateTargetFoldersTest, SpecialFoldersAreMadeByTheirNumbers) {
  Create({{10, 99, u"Folder Conflicts", u"IPF.Note"},
          {20, 99, u"Sync Issues", u"IPF.Note"},
          {30, 20, u"Local Failures", u"IPF.Note"},
          {40, 20, u"Server Failures", u"IPF.Note"},
          {50, 99, u"sync issues 2", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "Folder Conflicts", "19"), Made("", "Sync Issues", "20"),
                                              Made(R"(\\Sync Issues)", "Local Failures", "21"),
                                              Made(R"(\\Sync Issues)", "Server Failures", "22"),
                                              Made("", "sync issues 2", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersTest, AFolderThatIsThereIsTakenAsItIs) {
  Create({{10, 99, u"Deleted Items", u"IPF.Note"}, {20, 99, u"CONTACTS", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), IsEmpty());
}

TEST_F(CreateTargetFoldersTest, DeletedItemsIsASpecialFolderWhereverItIsNotThereYet) {
  Create({{10, 99, u"Mail", u"IPF.Note"}, {20, 10, u"Deleted Items", u"IPF.Note"}, {30, 10, u"deleted", u"c"}});
  EXPECT_THAT(Trace("AddFolder"),
              ElementsAre(Made("", "Mail", R"("IPF.Note")"), Made(R"(\\Mail)", "Deleted Items", "3"),
                          Made(R"(\\Mail)", "deleted", R"("c")")));
}

TEST_F(CreateTargetFoldersTest, TwoFoldersOfOneNameFoldIntoOne) {
  Create({{10, 99, u"Inbox", u"IPF.Note"}, {20, 99, u"INBOX", u"IPF.Task"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "Inbox", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersTest, AnImapClassReachesCreationAsNote) {
  Create({{10, 99, u"Inbox", u"ipf.IMAP"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "Inbox", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersTest, ABackslashInANamePutsTheFolderUnderAWrongParent) {
  Create({{10, 99, u"Inbox", u"IPF.Note"}, {20, 99, u"Inbox\\Old", u"IPF.Task"}});
  EXPECT_THAT(Trace("AddFolder"),
              ElementsAre(Made("", "Inbox", R"("IPF.Note")"), Made(R"(\\Inbox)", "Old", R"("IPF.Task")")));
}

TEST_F(CreateTargetFoldersTest, AFolderWhoseParentComesLaterIsMadeAfterIt) {
  Create({{10, 30, u"child", u"IPF.Note"}, {20, 99, u"other", u"IPF.Note"}, {30, 99, u"parent", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "other", R"("IPF.Note")"), Made("", "parent", R"("IPF.Note")"),
                                              Made(R"(\\parent)", "child", R"("IPF.Note")")));
  EXPECT_TRUE(state_.report.skipped.empty());
}

TEST_F(CreateTargetFoldersTest, EachPassOverTheFoldersSetAsideGoesInListOrder) {
  // 10 waits for 20, which waits for 50; 30 waits for 50 as well; 40 waits for 10.
  Create({{10, 20, u"b", u"IPF.Note"},
          {20, 50, u"a", u"IPF.Note"},
          {30, 50, u"c", u"IPF.Note"},
          {40, 10, u"d", u"IPF.Note"},
          {50, 99, u"top", u"IPF.Note"}});
  // 40 follows its parent 10 in the ordered list.
  EXPECT_THAT(Trace("AddFolder"),
              ElementsAre(Made("", "top", R"("IPF.Note")"), Made(R"(\\top)", "a", R"("IPF.Note")"),
                          Made(R"(\\top)", "c", R"("IPF.Note")"), Made(R"(\\top\\a)", "b", R"("IPF.Note")"),
                          Made(R"(\\top\\a\\b)", "d", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersTest, AFolderBehindTheOneItWaitedForHasItsTurnInTheSamePass) {
  // 10 and 30 wait for 20, which waits for 40: when 20 is made, 30 still comes in that pass and 10 in the next.
  Create({{10, 20, u"ahead", u"IPF.Note"},
          {20, 40, u"a", u"IPF.Note"},
          {30, 20, u"behind", u"IPF.Note"},
          {40, 99, u"top", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "top", R"("IPF.Note")"), Made(R"(\\top)", "a", R"("IPF.Note")"),
                                              Made(R"(\\top\\a)", "behind", R"("IPF.Note")"),
                                              Made(R"(\\top\\a)", "ahead", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersTest, OneFolderThatCannotBeMadeDoesNotEndTheRun) {
  Create({{10, 99, u"ends\\", u"IPF.Note"}, {20, 99, u"no\\way", u"IPF.Note"}, {30, 99, u"Inbox", u"IPF.Note"}});
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "Inbox", R"("IPF.Note")")));
  EXPECT_EQ(state_.report.skipped[SkipReason::kNoFolder], 2u);
}

TEST_F(CreateTargetFoldersTest, AChainThatStandsUpsideDownIsMadeFromItsTop) {
  std::vector<FolderRecord> folders;
  constexpr std::uint32_t kDepth = 600;
  for (std::uint32_t nid = 1000; nid < 1000 + kDepth; ++nid) folders.push_back({nid, nid + 1, u"f", u"c"});
  Create(folders);
  EXPECT_EQ(Trace("AddFolder").size(), kDepth);
}

TEST_F(CreateTargetFoldersTest, AFailureOfTheStoreEndsTheStep) {
  trace_.failing = R"({"op":"AddFolder")";
  trace_.code = output::ResultCode::STG_E_MEDIUMFULL;
  EXPECT_THROW(Create({{10, 99, u"Inbox", u"IPF.Note"}}), output::OutputFailure);
}

/// Ends or stops a run when the log names a folder.
class CreateTargetFoldersUntilTest : public CreateTargetFoldersTest {
 protected:
  void Write(text::TextView text) override {
    if (text == name_) then_();
  }

  void CreateUntil(text::TextView name, std::function<void()> then) {
    run_.log = this;
    name_ = name;
    then_ = std::move(then);
    Create({{10, 30, u"child", u"IPF.Note"}, {20, 99, u"other", u"IPF.Note"}, {30, 99, u"parent", u"IPF.Note"}});
  }

 private:
  text::TextView name_;
  std::function<void()> then_;
};

TEST_F(CreateTargetFoldersUntilTest, AStopLeavesTheFoldersThatAreNotMadeYet) {
  const auto stop = [this] { run_.control.RequestStop(); };
  EXPECT_THROW(CreateUntil(u"other", stop), engine::RunStopped);
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "other", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersUntilTest, AStopLeavesTheFoldersThatWereSetAside) {
  const auto stop = [this] { run_.control.RequestStop(); };
  EXPECT_THROW(CreateUntil(u"parent", stop), engine::RunStopped);
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "other", R"("IPF.Note")"), Made("", "parent", R"("IPF.Note")")));
}

TEST_F(CreateTargetFoldersUntilTest, AnEndOfTheRunLeavesThemToo) {
  CreateUntil(u"other", [this] { run_.runEnded = true; });
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "other", R"("IPF.Note")")));
  EXPECT_TRUE(state_.report.skipped.empty());
}

TEST_F(CreateTargetFoldersUntilTest, AnEndOfTheRunLeavesThoseThatWereSetAsideToo) {
  CreateUntil(u"parent", [this] { run_.runEnded = true; });
  EXPECT_THAT(Trace("AddFolder"), ElementsAre(Made("", "other", R"("IPF.Note")"), Made("", "parent", R"("IPF.Note")")));
  EXPECT_TRUE(state_.report.skipped.empty());
}

TEST_F(CreateTargetFoldersTest, TheLogNamesEachFolderThatWasMade) {
  run_.log = this;
  Create({{10, 99, u"Inbox", u"IPF.Note"}, {20, 99, u"inbox", u"IPF.Note"}, {30, 10, u"Old", u"IPF.Note"}});
  EXPECT_EQ(log_, u"\r\nInbox\r\nOld");
}

}  // namespace
}  // namespace velmora::recovery
