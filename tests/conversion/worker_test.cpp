#include "conversion/worker.h"

#include <algorithm>

#include "conversion/run_fixture.h"

namespace velmora::conversion {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class WorkerTest : public RunTest {
 protected:
  std::string Destination() const { return text::ToUtf8(state_.destinationPath); }
  std::ptrdiff_t HowOften(const std::string& line) const {
    return std::count(recorder_.said.begin(), recorder_.said.end(), line);
  }
};

TEST_F(WorkerTest, AnnouncesItsStagesInOrderAndTheEnd) {
  MakeSource();
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.Steps(), ElementsAre("stage 1", "stage 2", "stage 3", "stage 4", "stage 5", "stage 6",
                                             "stage 7", "stage 8", "stage 9", "list cleared", "done"));
  EXPECT_TRUE(state_.run.runEnded);
  EXPECT_TRUE(state_.treeFilling);
  EXPECT_FALSE(state_.run.runAborted);
}

TEST_F(WorkerTest, ReportsProgressUpToAHundred) {
  MakeSource();
  Run();
  std::string last;
  for (const std::string& line : recorder_.said) {
    if (line.starts_with("progress")) last = line;
  }
  EXPECT_EQ(last, "progress 100");
}

TEST_F(WorkerTest, ASmartScanDoesNotSurviveTheRun) {
  MakeSource();
  state_.run.smartScan = true;
  Run();
  EXPECT_FALSE(state_.run.smartScan);
  EXPECT_THAT(trace_.lines, Contains(HasSubstr("Orphaned Mails")));
}

TEST_F(WorkerTest, ClearsTheAbortOfTheRunBefore) {
  MakeSource();
  state_.run.runAborted = true;
  Run();
  EXPECT_FALSE(state_.run.runAborted);
  EXPECT_EQ(recorder_.said.back(), "done");
}

TEST_F(WorkerTest, ReleasesThePreviewOfTheRunBefore) {
  MakeSource();
  state_.previewSession = library_->CreateRDOSession();
  Run();
  EXPECT_FALSE(state_.previewSession);
}

TEST_F(WorkerTest, ASourceThatCannotBeOpenedEndsTheWorkerAtOnce) {
  UseSource(folder_.Path() / "none.ost");
  state_.run.smartScan = true;
  EXPECT_EQ(Run(), RunEnd::kEndedEarly);
  EXPECT_THAT(
      recorder_.said,
      ElementsAre("stage 1", "Error: Source file could not open.Make sure that another application is not using. "));
  EXPECT_FALSE(state_.run.runEnded);
  EXPECT_FALSE(state_.run.runAborted);
  EXPECT_TRUE(state_.run.smartScan) << "nothing behind the failing step happens";
}

TEST_F(WorkerTest, AFolderInPlaceOfASourceCannotBeOpened) {
  UseSource(folder_.Path());
  EXPECT_EQ(Run(), RunEnd::kEndedEarly);
  EXPECT_EQ(recorder_.said.back(),
            "Error: Source file could not open.Make sure that another application is not using. ");
}

TEST_F(WorkerTest, FilesThatAreNoStoreAreRefused) {
  const std::string addressBook = std::string(8, '\0') + "AB" + std::string(30000, '\0');
  for (const std::string& bytes :
       {std::string(), std::string("12345678"), std::string(100, '\xA5'), std::string(40000, '\x5A'), addressBook}) {
    recorder_.said.clear();
    UseSource(WriteFile("odd.ost", bytes));
    EXPECT_EQ(Run(), RunEnd::kEndedEarly);
    EXPECT_THAT(recorder_.Steps(), ElementsAre("stage 1", "stage 2", "Error: Pst/Ost file is not valid.", "stage 9"));
    EXPECT_FALSE(state_.run.runEnded);
    EXPECT_THAT(Output(), IsEmpty());
    EXPECT_EQ(outLook_.Report().format, std::nullopt);
  }
  EXPECT_EQ(outLook_.Report().storeKind, engine::StoreKind::kPab);
}

TEST_F(WorkerTest, AStoreOfFewerThanTwoBlocksIsRefusedInTheSameWords) {
  forge::Store store;
  store.Finish().Save(folder_.Path() / "empty.pst");
  UseSource(folder_.Path() / "empty.pst");
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.Steps(), ElementsAre("stage 1", "stage 2", "stage 3", "stage 4", "stage 5",
                                             "Error: Pst/Ost file is not valid.", "stage 9", "list cleared"));
  EXPECT_TRUE(state_.run.runAborted);
  EXPECT_TRUE(state_.run.runEnded);
  EXPECT_THAT(Output(), ElementsAre("empty Converted0")) << "the index file is gone";
}

TEST_F(WorkerTest, WithoutItsIndexFileARunIsAborted) {
  MakeSource();
  recorder_.onEvent = [&](const engine::Event& event) {
    if (IsStage(event, 5)) {
      std::filesystem::create_directory(destination_ / "outlook Converted0" / "FirstTableItem.dat");
    }
  };
  Run();
  EXPECT_THAT(recorder_.said, Contains("Error: Some problem is encounterd to create temporary file."));
  EXPECT_TRUE(state_.run.runAborted);
}

TEST_F(WorkerTest, ASetUpThatAbortsIsClosedOnce) {
  MakeSource();
  library_->storeFailure = output::ResultCode::E_FAIL;
  Run();
  EXPECT_EQ(HowOften("stage 9"), 1);
  EXPECT_EQ(recorder_.said.back(), "list cleared");
}

TEST_F(WorkerTest, TheMapOfNamedPropertiesLivesAsLongAsTheRun) {
  forge::Mailbox box({}, {.namesAtLeast = 300, .pairedBuckets = true});
  box.AddFolder({.name = u"Inbox"});
  box.names().IdOf({.set = forge::PropertySet::kCommon, .number = 0x8530});
  box.Finish().Save(folder_.Path() / "named.pst");
  UseSource(folder_.Path() / "named.pst");
  const auto isEmpty = [&] {
    for (std::uint32_t id = 0x8000; id < 0x9000; ++id) {
      if (outLook_.Recovery().namedProps.TranslateNamedId(id) != id) return false;
    }
    return true;
  };
  bool wasEmpty = true;
  recorder_.onEvent = [&](const engine::Event& event) {
    if (IsStage(event, 9)) wasEmpty = isEmpty();
  };
  Run();
  EXPECT_FALSE(wasEmpty);
  EXPECT_TRUE(isEmpty());
}

TEST_F(WorkerTest, ARunThatBeginsWithRunEndedRaisedStopsAtItsFirstCheck) {
  MakeSource();
  state_.run.runEnded = true;
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.said, ElementsAre("stage 1", "stage 9", "list cleared",
                                          "Information: Recovery process aborted.\nRecovered at:" + Destination()));
  EXPECT_TRUE(state_.run.runEnded);
}

TEST_F(WorkerTest, OneCOutLookServesManyRuns) {
  MakeSource();
  Run();
  const auto first = trace_.lines;
  for (const char* again : {"again", "and again"}) {
    StartOver(again);
    Run();
    EXPECT_EQ(trace_.lines, first);
    EXPECT_EQ(outLook_.Report().recovery.items.at(u"IPM.Note"), 2u);
  }
}

TEST_F(WorkerTest, AStoreOfAnotherEncodingIsReadAfterTheFirst) {
  MakeSource("one.ost", forge::Encoding::kPermute);
  Run();
  MakeSource("two.ost", forge::Encoding::kCyclic);
  StartOver("out");
  Run();
  EXPECT_EQ(outLook_.Report().blockEncoding, CryptMethod::kCyclic);
  EXPECT_EQ(outLook_.Report().recovery.items.at(u"IPM.Note"), 2u);
}

TEST_F(WorkerTest, TheReportTellsWhatTheScansFound) {
  MakeSource();
  Run();
  const RunReport& report = outLook_.Report();
  EXPECT_EQ(report.storeKind, engine::StoreKind::kOst);
  EXPECT_EQ(report.format, FORMAT_UNICODE);
  EXPECT_EQ(report.blockEncoding, CryptMethod::kPermute);
  EXPECT_GT(report.nodeCount, 5u);
  EXPECT_GT(report.blockRecordCount, 5u);
  EXPECT_EQ(report.orphanBlockCount, 0u);
  EXPECT_THAT(report.recovery.lost, IsEmpty());
}

TEST_F(WorkerTest, AStoreThatCanNoLongerBeWrittenEndsTheRunWithOneMessage) {
  MakeSource();
  library_->onItem = [] { throw output::OutputFailure(output::ResultCode::STG_E_MEDIUMFULL, "no space left"); };
  EXPECT_EQ(Run(), RunEnd::kFinished);
  EXPECT_THAT(recorder_.Steps(),
              ElementsAre("stage 1", "stage 2", "stage 3", "stage 4", "stage 5", "stage 6", "stage 7", "stage 8",
                          "Error: Not enough free disk space available to save converted .pst file.\nRecovered at:" +
                              Destination(),
                          "stage 9", "list cleared"));
  EXPECT_TRUE(state_.run.runAborted);
  EXPECT_EQ(recorder_.causes, (std::vector<std::string>{"no space left"}));
  EXPECT_EQ(seals_, 1);
}

TEST_F(WorkerTest, AfterAFullDiskTheReportCountsWhatTheStoreHolds) {
  MakeSource();
  int items = 0;
  library_->onItem = [&] {
    if (++items == 2) throw output::OutputFailure(output::ResultCode::STG_E_MEDIUMFULL, "no space left");
  };
  Run();
  EXPECT_EQ(items, 2);
  const RunReport& report = outLook_.Report();
  ASSERT_TRUE(report.left);
  EXPECT_THAT(report.recovery.items, IsEmpty()) << "one was made, but this library has no store to open";
  ASSERT_EQ(report.recovery.lost.size(), 1u);
  EXPECT_EQ(report.recovery.lost[0].kind, recovery::LossKind::kRun);
  EXPECT_EQ(report.recovery.lost[0].reason,
            u"the new store could not be written any further; nodes and orphaned blocks worked through: " +
                text::FromUtf8(std::to_string(report.recovery.nodesDone)));
  EXPECT_LT(report.recovery.nodesDone, report.nodeCount);
}

TEST_F(WorkerTest, ATableThatIsFullIsALoss) {
  MakeSource();
  fullTables_ = {{u"Inbox", 12}};
  Run();
  EXPECT_FALSE(outLook_.Report().left);
  ASSERT_EQ(outLook_.Report().recovery.lost.size(), 1u);
  EXPECT_EQ(outLook_.Report().recovery.lost[0].kind, recovery::LossKind::kRow);
  EXPECT_EQ(outLook_.Report().recovery.lost[0].reason,
            u"the table of the folder \"Inbox\" is full: values missing in the list of its items, though not in the "
            u"items: 12");
}

TEST_F(WorkerTest, AFailingWriteIsToldFromAFullDisk) {
  MakeSource();
  library_->onItem = [] { throw output::OutputFailure(output::ResultCode::STG_E_WRITEFAULT); };
  sealResult_ = tl::unexpected(platform::Failure{});
  Run();
  EXPECT_EQ(HowOften("Error: Unable to write converted .pst file.\nRecovered at:" + Destination()), 1);
  EXPECT_EQ(recorder_.causes.size(), 1u) << "one notice, not one a failure";
}

TEST_F(WorkerTest, AStoreThatCannotBeSealedIsNoSuccess) {
  MakeSource();
  sealResult_ = tl::unexpected(platform::Failure{platform::FailureKind::kFull, "x.pst", 0, "no space left"});
  Run();
  EXPECT_THAT(recorder_.said, Contains(HasSubstr("Not enough free disk space available to save converted .pst file.")));
  EXPECT_EQ(HowOften("done"), 0);
}

TEST_F(WorkerTest, TheStoreIsSealedOnceAndAfterTheSessionIsReleased) {
  MakeSource();
  Run();
  EXPECT_EQ(seals_, 1);
  EXPECT_FALSE(outLook_.Session());
}

TEST_F(WorkerTest, AnItemThatCannotBeMadeIsLeftOutAndTheRunGoesOn) {
  MakeSource();
  int items = 0;
  library_->onItem = [&] {
    if (++items == 1) throw output::OutputFailure(output::ResultCode::E_FAIL);
  };
  Run();
  EXPECT_EQ(recorder_.said.back(), "done");
  EXPECT_EQ(items, 2);
  EXPECT_EQ(outLook_.Report().recovery.lost.size(), 1u);
}

}  // namespace
}  // namespace velmora::conversion
