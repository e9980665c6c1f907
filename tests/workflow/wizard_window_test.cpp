#include "workflow/wizard_window.h"

#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class WizardWindowTest : public WizardTest {
 protected:
  void SetUp() override {
    machine_.run = [](conversion::COutLook&, conversion::RunState&) { return conversion::RunEnd::kEndedEarly; };
    Start();
  }
};

/// Counts how often a window goes off the screen.
class Hides : public QObject {
 public:
  explicit Hides(QWidget& window) { window.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject* window, QEvent* event) override {
    if (event->type() == QEvent::Hide) ++count;
    return QObject::eventFilter(window, event);
  }
};

TEST_F(WizardWindowTest, AllPagesStandInOneWindowThatStaysWhereTheUserPutIt) {
  QWidget& window = *CurrentPage().window();
  Hides hides(window);
  window.move(123, 45);
  const auto same = [&] { return CurrentPage().window() == &window && window.pos() == QPoint(123, 45); };
  Press(kSearchStartId);
  EXPECT_TRUE(IsPage<CFindPstDlg>() && same());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>() && same());
  Press(kBrowseStartId);
  PickInDialog(PathToQt(machine_.Write("mail.ost")));
  Press(kBrowseId);
  Press(kNextId);
  EXPECT_TRUE(IsPage<CCustom2Dlg>() && same());
  PickInDialog(PathToQt(machine_.folder.Path()));
  Press(kBrowseId);
  Press(kNextId);
  EXPECT_TRUE(IsPage<CProgressDlg>() && same());
  boxes_.Answer(QMessageBox::Yes);
  Press(kCancelId);
  EXPECT_TRUE(IsPage<CCustomDlg>() && same());
  EXPECT_EQ(hides.count, 0) << "it does not flicker";
}

TEST_F(WizardWindowTest, HasTheSizeOfItsPage) {
  QWidget& window = *CurrentPage().window();
  for (const int dpi : {96, 144, 120}) {
    frame_->DpiX = frame_->DpiY = dpi;
    LeavePage();
    frame_->OpenBrowsePage();
    EXPECT_EQ(window.size(), CurrentPage().size()) << dpi;
    EXPECT_EQ(CurrentPage().geometry().topLeft(), QPoint(0, 0));
  }
}

TEST_F(WizardWindowTest, GoesWithItsPageAndComesBackWithTheNext) {
  QWidget& window = *CurrentPage().window();
  LeavePage();
  Settle();
  EXPECT_FALSE(window.isVisible());
  frame_->OpenBrowsePage();
  EXPECT_TRUE(window.isVisible());
}

TEST_F(WizardWindowTest, TheFirstControlOfAPageHasTheFocus) {
  ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
  EXPECT_EQ(QApplication::focusWidget(), &Control<QWidget>(kBrowseStartId));
  Press(kSearchStartId);
  EXPECT_EQ(QApplication::focusWidget(), &Control<QWidget>(kDriveComboId));
}

TEST_F(WizardWindowTest, KeysReachThePageThoughNothingOnItHasTheFocus) {
  LeavePage();
  frame_->OpenDestinationPage(kBrowseTemplate);
  ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
  if (QWidget* focus = QApplication::focusWidget()) focus->clearFocus();
  QTest::keyClick(CurrentPage().window()->windowHandle(), Qt::Key_Escape);
  EXPECT_TRUE(IsNowhere());
}

}  // namespace
}  // namespace velmora::workflow
