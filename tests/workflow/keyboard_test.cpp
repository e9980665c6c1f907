// What the keyboard and a screen reader find on the pages.
#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>

#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/repair_profile_dlg.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class KeyboardTest : public WizardTest {
 protected:
  void SetUp() override { Start(); }

  /// All pages, each opened in turn.
  void OnEachPage(const std::function<void(Page&)>& look) {
    const std::function<void()> openers[] = {[this] { frame_->OpenStartPage(); }, [this] { frame_->OpenBrowsePage(); },
                                             [this] { frame_->OpenFindPage(); }, [this] { frame_->OpenProfilePage(); },
                                             [this] { frame_->OpenDestinationPage(kBrowseTemplate); }};
    for (const auto& open : openers) {
      CurrentPage().hide();
      open();
      Settle();
      look(CurrentPage());
    }
    CProgressDlg progress(*frame_);
    progress.show();
    Settle();
    look(progress);
  }

  static std::vector<QWidget*> Controls(Page& page) {
    std::vector<QWidget*> controls;
    for (QWidget* widget : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (!widget->isWindow() && !widget->objectName().isEmpty()) controls.push_back(widget);
    }
    return controls;
  }
};

TEST_F(KeyboardTest, EveryControlHasAnAccessibleName) {
  OnEachPage([](Page& page) {
    EXPECT_GE(Controls(page).size(), 2u);
    for (const QWidget* control : Controls(page)) {
      EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    }
  });
}

TEST_F(KeyboardTest, TabReachesEveryControlThatCanBeWorked) {
  OnEachPage([](Page& page) {
    page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&page));
    std::set<QString> reached;
    for (int i = 0; i < 20; ++i) {
      QTest::keyClick(&page, Qt::Key_Tab);
      for (const QWidget* at = QApplication::focusWidget(); at != nullptr && at != &page; at = at->parentWidget()) {
        reached.insert(at->objectName());
      }
    }
    for (const QWidget* control : Controls(page)) {
      if (!control->isVisible() || !control->isEnabled() || control->inherits("QLabel") ||
          control->inherits("QProgressBar")) {
        continue;
      }
      EXPECT_TRUE(reached.contains(control->objectName())) << control->objectName().toStdString();
    }
  });
}

TEST_F(KeyboardTest, NoKeyStandsForTwoButtonsOfAPage) {
  OnEachPage([](Page& page) {
    std::set<QString> keys;
    for (const QAbstractButton* button : page.findChildren<QAbstractButton*>(Qt::FindDirectChildrenOnly)) {
      if (button->inherits("velmora::controls::CxSkinButton")) continue;
      const QString key = button->shortcut().toString();
      EXPECT_FALSE(key.isEmpty()) << button->accessibleName().toStdString();
      EXPECT_TRUE(keys.insert(key).second) << key.toStdString();
    }
  });
}

TEST_F(KeyboardTest, EveryFieldHasItsLabel) {
  OnEachPage([](Page& page) {
    for (const std::uint16_t id : {kSourceEditId, kDestinationEditId, kDriveComboId}) {
      auto* field = page.Control<QWidget>(id);
      if (field == nullptr) continue;
      EXPECT_EQ(page.Control<QLabel>(kFieldLabelId)->buddy(), field);
    }
  });
}

TEST_F(KeyboardTest, TheWizardCanBeWalkedByKeysAlone) {
  const auto press = [this](Qt::Key key) { QTest::keyClick(&CurrentPage(), key, Qt::AltModifier); };
  press(Qt::Key_F);
  EXPECT_TRUE(Comes([this] { return IsPage<CFindPstDlg>(); }));
  press(Qt::Key_B);
  EXPECT_TRUE(Comes([this] { return IsPage<CCustomDlg>(); }));
  press(Qt::Key_S);
  EXPECT_TRUE(Comes([this] { return IsPage<CSelectPstDlg>(); }));
  PickInDialog(PathToQt(machine_.Write("mail.ost")));
  press(Qt::Key_R);
  EXPECT_TRUE(Comes([this] { return Control<QWidget>(kNextId).isEnabled(); }));
  CurrentPage().activateWindow();  // as a window manager does when a dialog closes
  ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
  press(Qt::Key_N);
  EXPECT_TRUE(Comes([this] { return IsPage<CCustom2Dlg>(); }));
  press(Qt::Key_M);
  EXPECT_TRUE(Comes([this] { return IsPage<CCustomDlg>(); }));
}

TEST_F(KeyboardTest, EnterAndEscapeDoNothingOnThePagesOfTheSource) {
  OnEachPage([this](Page& page) {
    if (page.inherits("velmora::workflow::CCustom2Dlg") || page.inherits("velmora::workflow::CProgressDlg")) return;
    for (QWidget* control : Controls(page)) {
      if (!control->isEnabled() || !control->isVisible()) continue;
      control->setFocus();
      for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) QTest::keyClick(control, key);
      Settle();
      ASSERT_TRUE(frame_->CurrentPage() == &page && page.isVisible()) << control->objectName().toStdString();
    }
  });
  EXPECT_TRUE(boxes_.seen.empty());
}

}  // namespace
}  // namespace velmora::workflow
