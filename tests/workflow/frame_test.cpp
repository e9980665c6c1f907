#include <QAction>
#include <QCheckBox>
#include <QKeySequenceEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeWidget>
#include <future>

#include "resources/menus.h"
#include "workflow/custom_dlg.h"
#include "workflow/customize_sheet.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/scripted_run.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using testing::ElementsAre;

class FrameTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.run = [this](conversion::COutLook& outLook, conversion::RunState& state) {
      return script_(outLook, state);
    };
    Start();
    machine_.log.clear();
  }
  void TearDown() override { frame_->EndWorkers(); }

  void Convert() {
    LeavePage();
    State().destinationPath = u"/out";
    frame_->StartConversion();
  }

  QTreeWidget& Tree() { return *frame_->Panes().FolderPane().findChild<QTreeWidget*>(); }

  ScriptedRun script_;
};

TEST_F(FrameTest, IsHiddenForItsWholeLife) {
  EXPECT_FALSE(frame_->isVisible());
  EXPECT_EQ(frame_->windowTitle(), "Velmora Convert OST to PST");
  EXPECT_EQ(frame_->objectName(), "VMREPAIR_OSTPST");
  Convert();
  EXPECT_FALSE(frame_->isVisible());
}

TEST_F(FrameTest, TheSilentUpdateCheckStartsTheHelper) {
  frame_.reset();
  machine_.log.clear();
  Start();
  EXPECT_THAT(machine_.Log("start "), ElementsAre("start " + (machine_.base / "vmupdate.EXE").string() +
                                                  " /SilentCheck /NoIcon /NoUpdateSelf"));
}

TEST_F(FrameTest, HasItsMenusToolbarAndPrompts) {
  QStringList menus;
  for (const QAction* menu : frame_->menuBar()->actions()) menus << menu->text();
  EXPECT_EQ(menus, QStringList({"&File", "&View", "&Help"}));
  QStringList help;
  for (const QAction* entry : frame_->menuBar()->actions()[2]->menu()->actions()) help << entry->text();
  EXPECT_EQ(help, QStringList({"Content", "Updates", "How to repair outlook data file (.pst) ?",
                               "How to import recovered outlook data file (.pst) ?", "About Us"}));
  auto* bar = frame_->findChild<QToolBar*>("Standard ToolBar");
  QStringList ids;
  for (const QAction* action : bar->actions()) ids << (action->isSeparator() ? "-" : action->objectName());
  EXPECT_EQ(ids, QStringList({"32780", "32776", "-", "32781"}));
  EXPECT_EQ(bar->iconSize(), QSize(48, 48));
  EXPECT_EQ(frame_->findChild<QAction*>("32780")->statusTip(), "Repair PST File");
  EXPECT_EQ(frame_->findChild<QAction*>("32780")->toolTip(), "Repair PST File");
  EXPECT_EQ(frame_->findChild<QAction*>("32781")->shortcut(), QKeySequence("F1"));
  EXPECT_EQ(frame_->findChild<QAction*>("57634")->shortcuts(),
            QList<QKeySequence>({QKeySequence("Ctrl+C"), QKeySequence("Ctrl+Ins")}));
  EXPECT_EQ(frame_->statusBar()->currentMessage(), "");
}

TEST_F(FrameTest, TheTreeAndTheBodyAreHiddenUntilARun) {
  EXPECT_TRUE(frame_->Panes().FolderPane().isHidden());
  EXPECT_TRUE(frame_->Panes().BodyPane().isHidden());
  Convert();
  EXPECT_FALSE(frame_->Panes().FolderPane().isHidden());
  EXPECT_FALSE(frame_->Panes().BodyPane().isHidden());
}

TEST_F(FrameTest, CommandsStartHelpUpdatesAndPages) {
  machine_.Write("prefix/vm-oxp.html");
  frame_->OnCommand(kHelpCommand);
  frame_->OnCommand(kUpdatesCommand);
  frame_->OnCommand(kHowToRepairCommand);
  frame_->OnCommand(kHowToImportCommand);
  EXPECT_THAT(machine_.log,
              ElementsAre("open " + (machine_.base / "vm-oxp.html").string(),
                          "start " + (machine_.base / "vmupdate.EXE").string(), testing::EndsWith("/pst-recovery"),
                          testing::EndsWith("/how-to-import-pst-file-outlook")));
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(FrameTest, TheOtherFormOfTheHelpFileGoesFirst) {
  machine_.Write("prefix/vm-oxp.html");
  machine_.Write("prefix/vm-oxp.chm");
  frame_->OnCommand(kHelpCommand);
  EXPECT_THAT(machine_.log, ElementsAre("open " + (machine_.base / "vm-oxp.chm").string()));
}

TEST_F(FrameTest, AMissingHelpFileIsTold) {
  for (const int code : {2, 3}) {
    machine_.shellResult = code;
    boxes_.Answer(QMessageBox::Ok);
    frame_->OnCommand(kHelpCommand);
  }
  EXPECT_EQ(boxes_.Texts(),
            QStringList({"Information: Unable to locate Help File", "Information: Unable to locate Help File"}));
}

TEST_F(FrameTest, HelpThatNothingOpensGoesToTheBrowserItselfOrIsTold) {
  const std::string help = (machine_.base / "vm-oxp.html").string();
  machine_.shellResult = 31;
  frame_->OnCommand(kHelpCommand);
  EXPECT_EQ(machine_.Log("browse "), std::vector<std::string>{"browse " + help});
  EXPECT_TRUE(boxes_.seen.empty());
  machine_.browserOpens = false;
  boxes_.Answer(QMessageBox::Ok);
  frame_->OnCommand(kHelpCommand);
  machine_.shellResult = 5;
  boxes_.Answer(QMessageBox::Ok);
  frame_->OnCommand(kHelpCommand);
  const QString path = QString::fromStdString(help);
  EXPECT_EQ(boxes_.Texts(),
            QStringList({"Information: No program was found to open:\n" + path,
                         "Information: The operating system denied access to the specified file.\n" + path}));
}

TEST_F(FrameTest, ADesktopThatRefusesLaterIsToldToo) {
  machine_.browserOpens = false;
  frame_->OnCommand(kHelpCommand);
  EXPECT_TRUE(boxes_.seen.empty());
  boxes_.Answer(QMessageBox::Ok);
  std::async(std::launch::async, machine_.refuse).wait();
  EXPECT_TRUE(Comes([this] { return boxes_.seen.size() == 1; }));
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Information: No program was found to open:\n" + PathToQt(machine_.base / "vm-oxp.html")));
}

TEST_F(FrameTest, AWebPageThatNothingOpensIsTold) {
  machine_.shellResult = 31;
  boxes_.Answer(QMessageBox::Ok);
  frame_->OnCommand(kHowToRepairCommand);
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: No program was found to open:\n"
                                        "https://www.velmora.example/pst-recovery"));
}

TEST_F(FrameTest, TheConvertCommandNeedsASource) {
  State().sourcePath.clear();
  State().destinationPath = u"/out";
  EXPECT_FALSE(frame_->IsCommandEnabled(kConvertCommand));
  frame_->OnCommand(kConvertCommand);
  EXPECT_EQ(frame_->WorkerThread(), nullptr);
  State().sourcePath = u"/mail.ost";
  LeavePage();
  frame_->OnCommand(kConvertCommand);
  EXPECT_TRUE(IsPage<CProgressDlg>());
}

TEST_F(FrameTest, TheStartPageDoesNotOpenBesideABusyList) {
  delete frame_->CurrentPage();
  State().treeFilling = true;  // a run is over
  std::promise<void> let;
  machine_.makeOutput = [&, ready = let.get_future().share(), make = machine_.makeOutput] {
    ready.wait();  // the listing opens the store, and that takes its time
    return make();
  };
  frame_->Panes().OnMessage({kListFolderMessage, 0, 0, u"\\\\mail Converted\\Inbox"});
  ASSERT_TRUE(frame_->Panes().ListBusy());
  frame_->OnCommand(kRepairCommand);
  EXPECT_EQ(frame_->OnFrameMessage(kShowStartPageMessage), 0);
  EXPECT_TRUE(IsNowhere());
  let.set_value();
  ASSERT_TRUE(Comes([this] { return !frame_->Panes().ListBusy(); }));
  frame_->OnCommand(kRepairCommand);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(FrameTest, TheToolbarCommandHidesAndShowsTheToolbar) {
  auto* bar = frame_->findChild<QToolBar*>("Standard ToolBar");
  EXPECT_FALSE(bar->isHidden());
  frame_->OnCommand(kToolbarCommand);
  EXPECT_TRUE(bar->isHidden());
  frame_->OnCommand(kToolbarCommand);
  EXPECT_FALSE(bar->isHidden());
}

TEST_F(FrameTest, AboutUsOfTheFrameIsIgnored) {
  frame_->OnCommand(kAboutCommand);
  Settle();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(machine_.log.empty());
}

TEST_F(FrameTest, EveryCommandOfTheStripHasItsIcon) {
  for (const std::uint16_t id : IconStrip()) {
    if (auto* action = frame_->findChild<QAction*>(QString::number(id))) {
      EXPECT_FALSE(action->icon().isNull()) << id;
    } else {
      ADD_FAILURE() << id;
    }
  }
}

TEST_F(FrameTest, TheLayoutOfTheBarsIsKeptForTheNextStart) {
  frame_->OnCommand(kToolbarCommand);
  State().skipExitPrompt = true;
  frame_->CloseRule();
  frame_.reset();
  Start();
  auto* bar = frame_->findChild<QToolBar*>("Standard ToolBar");
  EXPECT_TRUE(bar->isHidden());
  frame_->OnCommand(kToolbarCommand);
  State().skipExitPrompt = true;
  frame_->CloseRule();
}

TEST_F(FrameTest, TheToolbarCanBeCustomized) {
  InDialog<CustomizeSheet>([this](CustomizeSheet& sheet) {
    auto* bar = frame_->findChild<QToolBar*>("Standard ToolBar");
    sheet.findChild<QListWidget*>()->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_FALSE(bar->actions().contains(frame_->findChild<QAction*>("32780")));
    sheet.findChild<QCheckBox*>()->setChecked(false);
    EXPECT_EQ(bar->iconSize(), QSize(16, 16));
    sheet.findChild<QKeySequenceEdit*>("32776")->setKeySequence(QKeySequence("Ctrl+U"));
    EXPECT_EQ(frame_->findChild<QAction*>("32776")->shortcut(), QKeySequence("Ctrl+U"));
    sheet.reject();
  });
  frame_->OnCommand(kCustomizeCommand);
}

TEST_F(FrameTest, AnErrorNoticeIsTakenAndDoesNothing) {
  EXPECT_EQ(frame_->OnFrameMessage(MSG_ERROR_NOTICE), 1);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(FrameTest, AMessageStartsTheConversion) {
  LeavePage();
  State().destinationPath = u"/out";
  frame_->OnFrameMessage(kStartConversionMessage);
  EXPECT_TRUE(IsPage<CProgressDlg>());
}

TEST_F(FrameTest, ARunFillsThePanesAndTheNextOneForgetsThem) {
  EXPECT_FALSE(frame_->Panes().ListPane().HasColumns());
  State().treeFilling = true;
  Convert();
  EXPECT_FALSE(State().treeFilling);
  EXPECT_TRUE(frame_->Panes().ListPane().HasColumns());
  script_.Do([](conversion::RunState& state) {
    state.run.Say(engine::FolderReached{4369, u"Lost & Found"});
    state.run.Say(engine::FieldListed{engine::ListField::kFrom, u"somebody"});
    state.run.Say(engine::FieldListed{engine::ListField::kSubject, u"something"});
    state.run.Say(engine::AttachmentsListed{});
  });
  ASSERT_TRUE(Comes([this] { return frame_->Panes().ListPane().RowCount() == 1; }));
  EXPECT_EQ(Tree().topLevelItemCount(), 1);

  Key(Qt::Key_Escape);
  script_.EndEarly();
  Convert();
  EXPECT_EQ(frame_->Panes().ListPane().RowCount(), 0);
  EXPECT_EQ(Tree().topLevelItemCount(), 0);
}

TEST_F(FrameTest, APaneIsSwappedByAMessage) {
  EXPECT_FALSE(frame_->Panes().ShowsGrid());
  frame_->OnFrameMessage(kSwapPaneMessage, 0);
  EXPECT_TRUE(frame_->Panes().ShowsGrid());
  frame_->OnFrameMessage(kSwapPaneMessage, 1);
  EXPECT_FALSE(frame_->Panes().ShowsGrid());
}

TEST_F(FrameTest, WithoutADestinationNothingStartsAndNoWindowIsLeft) {
  for (const char16_t* destination : {u"", u"cancel"}) {
    LeavePage();
    State().destinationPath = destination;
    frame_->StartConversion();
    EXPECT_TRUE(IsNowhere());
    EXPECT_EQ(frame_->WorkerThread(), nullptr);
  }
}

TEST_F(FrameTest, ClosingTheFrameAsksAndNoChangesNothing) {
  boxes_.Answer(QMessageBox::No);
  frame_->close();
  EXPECT_EQ(boxes_.Texts(), QStringList("Velmora Convert OST to PST: Do you want to exit the application?"));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  EXPECT_THAT(machine_.log, ElementsAre("sleep 100"));
}

TEST_F(FrameTest, ClosingTheFrameStopsTheWorkerAndEndsTheProcess) {
  Convert();
  script_.Say(engine::Progress{5});
  ASSERT_TRUE(Comes([this] { return script_.done == 1; }));
  boxes_.Answer(QMessageBox::Yes);
  frame_->OnCommand(kExitCommand);
  EXPECT_EQ(script_.stopped, 1) << "the run has left, so its store is sealed";
  EXPECT_EQ(machine_.log.back(), "exit");
}

TEST_F(FrameTest, ClosingTheFrameAsksNothingOnceTheExitWasAnswered) {
  State().skipExitPrompt = true;
  frame_->CloseRule();
  EXPECT_TRUE(boxes_.seen.empty());
  EXPECT_THAT(machine_.log, ElementsAre("sleep 100", "exit"));
}

TEST_F(FrameTest, AnEndReachesEveryRunThatWasLeft) {
  Convert();
  ASSERT_TRUE(Comes([this] { return script_.begun == 1; }));
  Key(Qt::Key_Escape);
  Convert();
  frame_->EndWorkers();
  EXPECT_EQ(script_.stopped, 1);
  EXPECT_EQ(script_.begun, 1) << "the second never began";
}

}  // namespace
}  // namespace velmora::workflow
