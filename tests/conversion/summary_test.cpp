#include "conversion/summary.h"

#include <regex>

#include "conversion/run_fixture.h"
#include "platform/path_text.h"

namespace velmora::conversion {
namespace {

using testing::ElementsAre;

class SummaryTest : public testing::Test {
 protected:
  output::Ref<output::RDOFolder> AddFolder(const output::Ref<output::RDOFolder>& parent, text::TextView name,
                                           text::TextView containerClass, int items) {
    auto folder = parent->Folders()->Add(name, text::Text(containerClass));
    for (int i = 0; i < items; ++i) folder->Items()->Add(u"IPM.Note")->Save();
    return folder;
  }

  /// A log with nothing but its mark.
  void BeginLog() { std::ofstream(log_, std::ios::binary) << "\xFF\xFE"; }
  text::Text Log() const { return platform::TextOfPath(log_); }

  platform::TemporaryFolder folder_ = platform::TemporaryFolder::Create().value();
  std::filesystem::path log_ = folder_.Path() / "LogInformation.log";
  TraceLines trace_;
  output::TraceLibrary library_{trace_};
  output::Ref<output::RDOSession> session_ = library_.CreateRDOSession();
  output::Ref<output::RDOFolder> top_ = session_->Stores()->AddPSTStore(u"/x.pst", u"s Converted")->IPMRootFolder();
  FolderCounters counters_;
};

TEST_F(SummaryTest, FindsEveryFolderBeforeItsChildren) {
  auto inbox = AddFolder(top_, u"Inbox", u"IPF.Note", 0);
  AddFolder(AddFolder(inbox, u"A", u"IPF.Note", 0), u"B", u"IPF.Note", 0);
  AddFolder(inbox, u"C", u"IPF.Note", 0);
  std::vector<text::Text> paths;
  for (const SummaryFolder& folder : FoldersOf(*session_, u"s Converted")) paths.push_back(folder.path);
  EXPECT_THAT(paths,
              ElementsAre(u"\\\\s Converted\\Deleted Items", u"\\\\s Converted\\Inbox", u"\\\\s Converted\\Inbox\\A",
                          u"\\\\s Converted\\Inbox\\A\\B", u"\\\\s Converted\\Inbox\\C"));
}

TEST_F(SummaryTest, TheContainerClassSelectsTheCounter) {
  struct Row {
    text::TextView containerClass;
    std::int64_t FolderCounters::*counter;
  };
  const Row rows[] = {
      {u"IPF.Contact", &FolderCounters::contacts},
      {u"IPM.Contact", &FolderCounters::contacts},
      {u"IPF.DistList", &FolderCounters::contacts},
      {u"IPM.DistList", &FolderCounters::contacts},
      {u"IPF.Journal", &FolderCounters::journals},
      {u"IPM.Journal", &FolderCounters::journals},
      {u"IPF.Activity", &FolderCounters::journals},
      {u"IPM.Activity", &FolderCounters::journals},
      {u"IPM.Task", &FolderCounters::tasks},
      {u"IPF.Task", &FolderCounters::tasks},
      {u"IPM.TaskRequest.Decline", &FolderCounters::tasks},
      {u"IPF.TaskRequest.Decline", &FolderCounters::tasks},
      {u"IPM.TaskRequest.Update", &FolderCounters::tasks},
      {u"IPF.TaskRequest.Update", &FolderCounters::tasks},
      {u"IPM.TaskRequest", &FolderCounters::tasks},
      {u"IPF.TaskRequest", &FolderCounters::tasks},
      {u"IPM.StickyNote", &FolderCounters::notes},
      {u"IPF.StickyNote", &FolderCounters::notes},
      {u"IPF.Appointment", &FolderCounters::calendar},
      {u"IPM.Appointment", &FolderCounters::calendar},
      {u"IPF.Note", &FolderCounters::mail},
      {u"IPM.Note", &FolderCounters::mail},
      {u"IPM.TaskRequest.Accept", &FolderCounters::mail},
      {u"ipf.contact", &FolderCounters::mail},
      {u"", &FolderCounters::mail},
  };
  int n = 0;
  for (const Row& row : rows) {
    const text::Text name = text::FromUtf8("f" + std::to_string(++n));
    AddFolder(top_, name, row.containerClass, 2);
    FolderCounters counters;
    WriteSummary(*session_, {{u"\\\\s Converted\\" + name, name}}, u"", counters);
    EXPECT_EQ(counters.*row.counter, 2) << text::ToUtf8(row.containerClass);
    EXPECT_EQ(counters.total, 2);
    EXPECT_EQ(counters.lastFolder, 2);
  }
}

TEST_F(SummaryTest, AFolderThatIsNotThereCountsForNothing) {
  BeginLog();
  const auto counts = WriteSummary(*session_, {{u"\\\\s Converted\\None", u"None"}}, Log(), counters_);
  EXPECT_EQ(counts, std::vector<std::optional<std::int32_t>>{std::nullopt});
  EXPECT_EQ(counters_.total, 0);
  EXPECT_EQ(text::ToUtf8(ReadUtf16(log_)).find("None"), std::string::npos) << "there is nothing to write about it";
}

TEST_F(SummaryTest, IsAppendedToTheLog) {
  AddFolder(AddFolder(top_, u"Inbox", u"IPF.Note", 3), u"Old", u"IPF.Note", 1);
  std::ofstream(log_, std::ios::binary) << std::string(
      "\xFF\xFE"
      "x\0",
      4);
  const std::vector<SummaryFolder> folders = {{u"\\\\s Converted\\Inbox", u"Inbox"},
                                              {u"\\\\s Converted\\Inbox\\Old", u"Old"}};
  EXPECT_THAT(WriteSummary(*session_, folders, Log(), counters_), ElementsAre(3, 1));
  EXPECT_EQ(counters_.total, 4);
  const std::string text = text::ToUtf8(ReadUtf16(log_));
  EXPECT_TRUE(std::regex_match(
      text, std::regex("\xEF\xBB\xBFx\r\n\r\n-------------------Summary--------------------"
                       "\r\n\r\n\\\\\\\\s Converted\\\\Inbox: 3\r\n\r\n\\\\\\\\s Converted\\\\Inbox\\\\Old: 1"
                       "\r\n\r\nTotal recovered mail items : 4\r\n\r\nDate and time : [^\r\n]+")))
      << text;
}

TEST_F(SummaryTest, WithoutALogOnlyCounts) {
  AddFolder(top_, u"Inbox", u"IPF.Note", 3);
  EXPECT_THAT(WriteSummary(*session_, {{u"\\\\s Converted\\Inbox", u"Inbox"}}, Log(), counters_), ElementsAre(3));
  EXPECT_FALSE(std::filesystem::exists(log_));
}

TEST_F(SummaryTest, AFolderUnderNoneIsLeftOutUnlessTheRunAddedIt) {
  AddFolder(top_, u"Root", u"IPF.Note", 1);
  AddFolder(top_, u"Lost & Found", u"IPF.Note", 1);
  AddFolder(top_, u"Orphaned Mails", u"IPF.Note", 1);
  EXPECT_THAT(WriteSummary(*session_,
                           {{u"\\\\s Converted\\Root", u"Root", false},
                            {u"\\\\s Converted\\Lost & Found", u"Lost & Found", false},
                            {u"\\\\s Converted\\Orphaned Mails", u"Orphaned Mails", false}},
                           u"", counters_),
              ElementsAre(std::nullopt, 1, 1));
}

}  // namespace
}  // namespace velmora::conversion
