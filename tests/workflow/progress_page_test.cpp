#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>

#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/scripted_run.h"

namespace velmora::workflow {
namespace {

using namespace resources;

constexpr const char* kStopBox = "Confirmation: Do you want to stop the process?";
constexpr const char* kExitBox = "Information: Do you want to exit the application?";

class ProgressPageTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.run = [this](conversion::COutLook& outLook, conversion::RunState& state) {
      return script_(outLook, state);
    };
    Start();
    LeavePage();
    Convert();
  }
  void TearDown() override { frame_->EndWorkers(); }

  void Convert() {
    State().destinationPath = FromQt(PathToQt(machine_.folder.Path()));
    frame_->StartConversion();
    ASSERT_TRUE(IsPage<CProgressDlg>());
  }

  /// Waits until the run has done everything that it was given.
  void Done(int pieces) {
    ASSERT_TRUE(Comes([&] { return script_.done >= pieces; }));
    Settle();
  }

  QString Text(std::uint16_t id) { return Control<QLabel>(id).text(); }
  int Bar() { return Control<QProgressBar>(kProgressBarId).value(); }
  bool IsShown(std::uint16_t id) { return Control<QWidget>(id).isVisible(); }

  ScriptedRun script_;
};

TEST_F(ProgressPageTest, BeginsAtZero) {
  EXPECT_EQ(Text(kHeadlineId), "Converting OST to PST, please wait...");
  EXPECT_EQ(Text(kStageCaptionId), "Starting Conversion...");
  EXPECT_EQ(Text(kPercentageId), "0%");
  EXPECT_EQ(Bar(), 0);
  EXPECT_TRUE(Control<QWidget>(kCancelId).isEnabled());
  EXPECT_FALSE(Control<QWidget>(kFinishId).isEnabled());
  EXPECT_EQ(frame_->progressDialog, &CurrentPage());
}

TEST_F(ProgressPageTest, TheHeadlineIsBoldAndFifteenPixelsHigh) {
  const QFont font = Control<QLabel>(kHeadlineId).font();
  EXPECT_EQ(font.pixelSize(), 15);
  EXPECT_EQ(font.weight(), 700);
}

TEST_F(ProgressPageTest, ShowsThePercentageAndDropsWhatIsAboveAHundred) {
  script_.Say(engine::Progress{37, engine::Phase::kBlockScan});
  Done(1);
  EXPECT_EQ(Bar(), 37);
  EXPECT_EQ(Text(kPercentageId), "37%");
  EXPECT_EQ(Control<QProgressBar>(kProgressBarId).windowTitle(), "37%");
  script_.Say(engine::Progress{101});
  script_.Say(engine::Progress{4000000000u});
  Done(3);
  EXPECT_EQ(Bar(), 37);
  EXPECT_EQ(Text(kPercentageId), "37%");
  script_.Say(engine::Progress{100});
  Done(4);
  EXPECT_EQ(Text(kPercentageId), "100%");
}

TEST_F(ProgressPageTest, TheSamePercentageTwiceSetsItsTextOnce) {
  script_.Say(engine::Progress{5});
  Done(1);
  Control<QLabel>(kPercentageId).setText("untouched");
  script_.Say(engine::Progress{5});
  Done(2);
  EXPECT_EQ(Text(kPercentageId), "untouched");
}

TEST_F(ProgressPageTest, ShowsEachStageAndNothingDuringTheFourth) {
  const char* const captions[] = {"Opening OST file...",
                                  "Validating OST file...",
                                  "Creating new profile...",
                                  "",
                                  "Validating Folder Structure...",
                                  "Collecting Folder Names...",
                                  "Converting Folder Items...",
                                  "Converting Mail Items...",
                                  "Closing file...",
                                  "Processing Wait..."};
  for (std::uint32_t stage = 1; stage <= 10; ++stage) {
    script_.Say(engine::StageBegun{stage});
    Done(int(stage));
    EXPECT_EQ(Text(kStageCaptionId), captions[stage - 1]);
  }
  frame_->progressDialog->OnRunMessage({MSG_STAGE, 2, 1, {}});
  EXPECT_EQ(Text(kStageCaptionId), "Closing file...") << "the ninth stage is forced";
}

TEST_F(ProgressPageTest, AtTheClosingStageThePageIsUpToDate) {
  script_.Do([this](conversion::RunState& state) {
    state.run.Say(engine::Progress{12});
    state.run.Say(engine::StageBegun{9});
    ASSERT_NE(frame_->progressDialog, nullptr);
    EXPECT_EQ(frame_->progressDialog->Control<QProgressBar>(kProgressBarId)->value(), 12);
  });
  Done(1);
}

TEST_F(ProgressPageTest, AtTheEndTheFolderOfTheNewStoreOpensAndFinishLeadsToTheStart) {
  script_.Do([](conversion::RunState& state) { state.destinationPath = u"/out/mail Converted0/mail Converted.pst"; });
  script_.Finish();
  Done(2);
  EXPECT_EQ(Text(kHeadlineId), "OST file conversion completed.");
  EXPECT_TRUE(IsShown(kHeadlineId));
  EXPECT_EQ(Text(kStageCaptionId), "Conversion Completed.");
  for (const std::uint16_t id : {kStageCaptionId, kAdviceId, kCancelId, kProgressBarId, kPercentageId}) {
    EXPECT_FALSE(IsShown(id)) << id;
  }
  EXPECT_EQ(machine_.Log("open "), std::vector<std::string>{"open /out/mail Converted0"});
  ASSERT_TRUE(Control<QWidget>(kFinishId).isEnabled());
  Press(kFinishId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  EXPECT_EQ(frame_->progressDialog, nullptr);
  EXPECT_FALSE(State().run.runEnded) << "fit for the next run";
}

TEST_F(ProgressPageTest, AtTheEndThePathOfTheNewStoreCanBeSelectedAndFinishHasTheFocus) {
  EXPECT_FALSE(IsShown(kStoreLabelId));
  EXPECT_FALSE(IsShown(kStorePathId));
  script_.Do([](conversion::RunState& state) { state.destinationPath = u"/out/mail Converted0/mail Converted.pst"; });
  script_.Finish();
  Done(2);
  EXPECT_TRUE(IsShown(kStoreLabelId));
  EXPECT_EQ(Text(kStoreLabelId), "The new store:");
  auto& path = Control<QLineEdit>(kStorePathId);
  EXPECT_TRUE(path.isVisible() && path.isReadOnly());
  EXPECT_EQ(path.text(), "/out/mail Converted0/mail Converted.pst");
  path.selectAll();
  EXPECT_EQ(path.selectedText(), path.text());
  EXPECT_EQ(CurrentPage().window()->focusWidget(), &Control<QWidget>(kFinishId));
}

TEST_F(ProgressPageTest, AFolderThatNothingOpensIsTold) {
  machine_.shellResult = 31;
  script_.Do([](conversion::RunState& state) { state.destinationPath = u"/out/mail Converted0/mail Converted.pst"; });
  script_.Finish();
  boxes_.Answer(QMessageBox::Ok);
  Done(2);
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: No program was found to open:\n/out/mail Converted0"));
  EXPECT_TRUE(IsShown(kStorePathId));
}

TEST_F(ProgressPageTest, AStopTellsWhereTheStoreIsOnceThereIsOne) {
  script_.Do([](conversion::RunState& state) { state.destinationPath = u"/out/mail Converted0/mail Converted.pst"; });
  script_.Say(engine::StageBegun{4});
  Done(2);
  boxes_.Answer(QMessageBox::Yes);
  boxes_.Answer(QMessageBox::Ok, [this] { EXPECT_TRUE(IsPage<CCustomDlg>()) << "the start page is there already"; });
  Press(kCancelId);
  EXPECT_EQ(boxes_.Texts(), QStringList({kStopBox,
                                         "Information: Recovery process aborted.\nRecovered at:"
                                         "/out/mail Converted0/mail Converted.pst"}));
  EXPECT_EQ(boxes_.seen.back().icon, QMessageBox::Information);
}

TEST_F(ProgressPageTest, AStopAheadOfTheStoreTellsNoPath) {
  script_.Say(engine::StageBegun{3});
  Done(1);
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  EXPECT_EQ(boxes_.Texts(), QStringList(kStopBox));
}

TEST_F(ProgressPageTest, CancelHoldsTheRunAndNoLetsItGoOnWithoutAGap) {
  script_.Say(engine::Progress{10});
  Done(1);
  boxes_.Answer(QMessageBox::No, [this] {
    for (std::uint32_t percent = 11; percent <= 13; ++percent) script_.Say(engine::Progress{percent});
    QTest::qWait(150);
    EXPECT_LE(script_.done, 2) << "at most the piece of work at hand ends";
    EXPECT_EQ(Bar(), 10) << "the page does not change under the question";
  });
  Press(kCancelId);
  EXPECT_EQ(boxes_.Texts(), QStringList(kStopBox));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  Done(4);
  EXPECT_EQ(Text(kPercentageId), "13%");
  EXPECT_EQ(script_.stopped, 0);
}

TEST_F(ProgressPageTest, CancelAndYesLeavesForGood) {
  script_.Say(engine::Progress{10});
  Done(1);
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  EXPECT_TRUE(Comes([this] { return script_.stopped == 1; }));
  EXPECT_TRUE(machine_.Log("open ").empty()) << "no end is told";
  EXPECT_FALSE(State().run.runEnded);
}

TEST_F(ProgressPageTest, AWorkerThatWaitsForThePageCanBeStopped) {
  ASSERT_TRUE(Comes([this] { return script_.begun == 1; }));
  // It says something just while the question is open.
  boxes_.Answer(QMessageBox::Yes, [this] {
    script_.Say(engine::Progress{50});
    QTest::qWait(50);
  });
  Press(kCancelId);
  EXPECT_TRUE(Comes([this] { return script_.stopped == 1; }));
}

TEST_F(ProgressPageTest, TheCloseBoxAsksToStopWhileTheRunIsOn) {
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList(kStopBox));
  EXPECT_TRUE(IsPage<CProgressDlg>());
}

TEST_F(ProgressPageTest, TheCloseBoxAsksToExitOnceTheRunHasEnded) {
  script_.Finish();
  Done(1);
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_TRUE(IsPage<CProgressDlg>());
  boxes_.Answer(QMessageBox::Yes);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList({kExitBox, kExitBox}));
  EXPECT_EQ(machine_.Log("exit").size(), 1u);
  EXPECT_TRUE(IsNowhere());
}

TEST_F(ProgressPageTest, AfterAFailedStepThePageStaysButAsksForNoPatience) {
  script_.Do([](conversion::RunState& state) {
    state.run.Say(engine::StageBegun{5});
    state.run.Abort({engine::NoticeKind::kNotValid, {}, {}});
  });
  boxes_.Answer(QMessageBox::Ok);
  script_.Finish();
  Done(2);
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: Pst/Ost file is not valid."));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Critical);
  EXPECT_EQ(Text(kStageCaptionId), "Validating Folder Structure...");
  EXPECT_EQ(Text(kHeadlineId), "OST file conversion not completed.") << "there is nothing to wait for";
  EXPECT_FALSE(Control<QWidget>(kFinishId).isEnabled());

  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts().last(), kExitBox) << "the run has ended";
  boxes_.Answer(QMessageBox::No);
  Press(kCancelId);
  EXPECT_EQ(boxes_.Texts().last(), kStopBox) << "the button still asks to stop";
  EXPECT_TRUE(IsPage<CProgressDlg>());
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(ProgressPageTest, AfterAFailureThatEndedTheWorkerBothWaysAskToStop) {
  script_.Say(engine::Notice{engine::NoticeKind::kNotValid, {}, {}});
  script_.EndEarly();
  boxes_.Answer(QMessageBox::Ok);
  Done(2);
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  EXPECT_EQ(boxes_.Texts(), QStringList({"Error: Pst/Ost file is not valid.", kStopBox, kStopBox}));
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

class LeftPageTest : public ProgressPageTest, public testing::WithParamInterface<Qt::Key> {};

TEST_P(LeftPageTest, LeavesAtOnceWithoutAQuestionAndTheRunGoesOn) {
  Key(GetParam());
  EXPECT_TRUE(boxes_.seen.empty());
  EXPECT_TRUE(IsPage<CCustomDlg>());
  script_.Say(engine::Progress{60});
  script_.Finish();
  Done(2);
  EXPECT_TRUE(State().run.runEnded);
  EXPECT_TRUE(IsPage<CCustomDlg>()) << "messages without a page are lost";
  EXPECT_TRUE(machine_.Log("open ").empty());
}

INSTANTIATE_TEST_SUITE_P(ByKey, LeftPageTest, testing::Values(Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter));

TEST_F(ProgressPageTest, EnterLeavesThePageEvenFromAButton) {
  Control<QWidget>(kCancelId).setFocus();
  QTest::keyClick(&Control<QWidget>(kCancelId), Qt::Key_Return);
  EXPECT_TRUE(boxes_.seen.empty());
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(ProgressPageTest, ARunBesideOneThatWasLeftWaitsForItsEnd) {
  Key(Qt::Key_Escape);
  LeavePage();
  Convert();
  ASSERT_TRUE(Comes([this] { return script_.begun == 1; }));
  QTest::qWait(60);
  EXPECT_EQ(script_.begun, 1) << "the first still runs";
  script_.Finish();
  EXPECT_TRUE(Comes([this] { return script_.begun == 2; }));
  EXPECT_TRUE(State().run.runEnded) << "the end of the first meets the second";
}

TEST_F(ProgressPageTest, AWaitingRunThatIsStoppedNeverBeginsAndTheOtherGoesOn) {
  Key(Qt::Key_Escape);
  LeavePage();
  Convert();
  boxes_.Answer(QMessageBox::Yes, [this] {
    script_.Say(engine::Progress{5});
    EXPECT_TRUE(Comes([this] { return script_.done == 1; })) << "the question holds its own run alone";
  });
  Press(kCancelId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  script_.EndEarly();
  Done(2);
  QTest::qWait(50);
  EXPECT_EQ(script_.begun, 1);
  EXPECT_EQ(script_.stopped, 0);
}

TEST_F(ProgressPageTest, AfterAStopTheNextRunIsANewOne) {
  ASSERT_TRUE(Comes([this] { return script_.begun == 1; }));
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  LeavePage();
  Convert();
  script_.Say(engine::Progress{44});
  Done(1);
  EXPECT_EQ(script_.begun, 2);
  EXPECT_EQ(Text(kPercentageId), "44%");
}

TEST_F(ProgressPageTest, TheDisplayDecidesItsSizeByARuleOfItsOwn) {
  EXPECT_EQ(CurrentPage().size(), QSize(700, 430));
  frame_->DpiX = 126;
  frame_->DpiY = 120;
  EXPECT_EQ(CProgressDlg(*frame_).size(), QSize(815, 530));
}

TEST_F(ProgressPageTest, TheProgramThatClosesItselfAsksNothing) {
  script_.Do([](conversion::RunState& state) {
    state.skipExitPrompt = true;
    state.closeWindow();
  });
  EXPECT_TRUE(Comes([this] { return !machine_.Log("exit").empty(); }));
  EXPECT_TRUE(boxes_.seen.empty());
  EXPECT_EQ(script_.stopped, 1) << "the run has left before the process ends";
}

}  // namespace
}  // namespace velmora::workflow
