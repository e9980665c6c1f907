// What the keyboard and a screen reader find on the pages.
#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QThread>

#include "controls/up_dialog.h"
#include "workflow/about_dlg.h"
#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/customize_sheet.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"
#include "workflow/mode_notice.h"
#include "workflow/progress_dlg.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class KeyboardTest : public WizardTest {
 protected:
  void SetUp() override { Start(); }
};

/// Every widget of a window that can be worked or read has a name for those who hear the screen read out.
void ExpectNames(QWidget& window) {
  int named = 0;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const bool told = widget->focusPolicy() != Qt::NoFocus || widget->inherits("QLabel");
    if (!told || !widget->isVisible() || widget->window() != window.window() || widget->inherits("QScrollBar"))
      continue;
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(interface, nullptr);
    const auto* label = qobject_cast<QLabel*>(widget);
    if (label != nullptr && label->text().isEmpty()) continue;  // a picture
    EXPECT_FALSE(interface->text(QAccessible::Name).isEmpty())
        << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    ++named;
  }
  EXPECT_GE(named, 1);
}

TEST_F(KeyboardTest, EveryControlHasAnAccessibleName) {
  OnEachPage([](Page& page) {
    EXPECT_GE(Controls(page).size(), 2u);
    for (const QWidget* control : Controls(page)) {
      EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    }
    ExpectNames(page);
  });
}

TEST_F(KeyboardTest, EveryControlOfBoxesAndDialogsHasAnAccessibleName) {
  boxes_.Answer(QMessageBox::No, [] { ExpectNames(*QApplication::activeModalWidget()); });
  CloseBox();
  EXPECT_EQ(boxes_.seen.size(), 1u);

  std::filesystem::copy(std::filesystem::path(VELMORA_SOURCE_DIR) / "src/resources/lang", machine_.base / "Lang");
  CAboutDlg about(*frame_, &CurrentPage());
  CInformationDlg notice;
  CDisclaimerDlg terms;
  CustomizeSheet sheet(*frame_);
  controls::CUPDialog wait(nullptr, "Loading", [](const controls::CUPDialog::Link&) { return true; });
  for (QDialog* dialog : std::initializer_list<QDialog*>{&about, &notice, &terms, &sheet, &wait}) {
    SCOPED_TRACE(dialog->metaObject()->className());
    dialog->show();
    Settle();
    ExpectNames(*dialog);
    dialog->hide();
  }
}

TEST_F(KeyboardTest, EveryPageHasTheTitleTheIconAndTheWindowClass) {
  OnEachPage([](Page& page) {
    const QWidget& window = *page.window();
    EXPECT_EQ(window.windowTitle(), "Velmora Convert OST to PST");
    EXPECT_EQ(window.objectName(), "VMREPAIR_OSTPST");
    EXPECT_FALSE(window.windowIcon().isNull());
  });
}

TEST_F(KeyboardTest, APageIsKnownByItsRole) {
  EXPECT_EQ(CurrentPage().window()->windowRole(), "CCustomDlg");
  Press(kBrowseStartId);
  EXPECT_EQ(CurrentPage().window()->windowRole(), "CSelectPstDlg");
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

TEST_F(KeyboardTest, TabGoesThroughAPageInTheOrderOfItsTemplate) {
  OnEachPage([](Page& page) {
    page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&page));
    QStringList order;
    for (const QWidget* control : Controls(page)) {
      if (control->isVisible() && control->isEnabled() && control->focusPolicy() != Qt::NoFocus) {
        order << control->objectName();
      }
    }
    page.findChild<QWidget*>(order.last())->setFocus();
    QStringList walked;
    for (int i = 0; i < order.size(); ++i) {
      QTest::keyClick(&page, Qt::Key_Tab);
      const QWidget* at = QApplication::focusWidget();
      while (at != nullptr && at->parentWidget() != &page) at = at->parentWidget();
      walked << (at != nullptr ? at->objectName() : QString());
    }
    EXPECT_EQ(walked, order) << page.metaObject()->className();
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

TEST_F(KeyboardTest, TheSearchIsBegunAndStoppedByTheMnemonicsOfItsButton) {
  for (int i = 0; i < 2000; ++i)
    std::filesystem::create_directories(machine_.volumes[0].mountPoint / std::to_string(i));
  QTest::keyClick(&CurrentPage(), Qt::Key_F, Qt::AltModifier);
  ASSERT_TRUE(Comes([this] { return IsPage<CFindPstDlg>(); }));
  const auto caption = [this] { return Control<QAbstractButton>(kFindId).text(); };
  ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
  QTest::keyClick(&CurrentPage(), Qt::Key_D, Qt::AltModifier);
  ASSERT_TRUE(Comes([&] { return caption() == "S&top"; }));
  QTest::keyClick(&CurrentPage(), Qt::Key_T, Qt::AltModifier);
  EXPECT_TRUE(Comes([&] { return caption() == "Fin&d"; }));
}

TEST_F(KeyboardTest, ARunIsStoppedAndLetGoOnByKeys) {
  machine_.run = [](conversion::COutLook&, conversion::RunState& state) {
    try {
      while (true) {
        state.run.control.PausePoint();
        QThread::msleep(1);
      }
    } catch (const engine::RunStopped&) {
    }
    return conversion::RunEnd::kStopped;
  };
  LeavePage();
  State().destinationPath = u"/out";
  frame_->StartConversion();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
  const auto answerBy = [this](Qt::Key key) {
    boxes_.Work([key](QMessageBox& box) { QTest::keyClick(&box, key); });
    CurrentPage().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&CurrentPage()));
    QTest::keyClick(&CurrentPage(), Qt::Key_C, Qt::AltModifier);
    const std::size_t before = boxes_.seen.size();
    ASSERT_TRUE(Comes([&] { return boxes_.seen.size() > before && QApplication::activeModalWidget() == nullptr; }));
  };
  answerBy(Qt::Key_Escape);
  EXPECT_TRUE(IsPage<CProgressDlg>()) << "Escape is a No";
  answerBy(Qt::Key_N);
  EXPECT_TRUE(IsPage<CProgressDlg>());
  answerBy(Qt::Key_Return);
  EXPECT_TRUE(IsPage<CCustomDlg>()) << "Enter is a Yes";
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
