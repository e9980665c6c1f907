#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class StartPageTest : public WizardTest {};

TEST_F(StartPageTest, IsTheFirstPageAndTheFrameStaysHidden) {
  Start();
  EXPECT_TRUE(IsPage<CCustomDlg>());
  EXPECT_FALSE(frame_->isVisible());
  EXPECT_EQ(CurrentPage().window()->windowTitle(), "Velmora Convert OST to PST");
  EXPECT_EQ(CurrentPage().size(), QSize(700, 430));
}

TEST_F(StartPageTest, ItsButtonsLeadToBrowsingAndToTheSearch) {
  Start();
  Press(kBrowseStartId);
  EXPECT_TRUE(IsPage<CSelectPstDlg>());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  Press(kSearchStartId);
  EXPECT_TRUE(IsPage<CFindPstDlg>());
  Press(kMainId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(StartPageTest, TheThirdButtonIsGone) {
  Start();
  EXPECT_EQ(CurrentPage().Control<QWidget>(kHiddenStartButtonId), nullptr);
}

TEST_F(StartPageTest, EnterAndEscapeDoNothing) {
  Start();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) Key(key);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(StartPageTest, TheCloseBoxAsksAndNoChangesNothing) {
  Start();
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: Do you want to exit the application?"));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  EXPECT_EQ(boxes_.seen[0].buttons, QMessageBox::Yes | QMessageBox::No);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  EXPECT_FALSE(State().skipExitPrompt);
  EXPECT_TRUE(machine_.Log("exit").empty());
}

TEST_F(StartPageTest, TheCloseBoxAsksOnceAndYesEndsTheProcess) {
  Start();
  machine_.log.clear();
  boxes_.Answer(QMessageBox::Yes);
  CloseBox();
  EXPECT_EQ(boxes_.seen.size(), 1u) << "the frame does not ask again";
  EXPECT_TRUE(State().skipExitPrompt);
  EXPECT_EQ(machine_.log, (std::vector<std::string>{"sleep 100", "exit"}));
  EXPECT_TRUE(IsNowhere());
}

}  // namespace
}  // namespace velmora::workflow
