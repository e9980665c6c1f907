#include <QMenu>
#include <QPainter>

#include "controls/hyper_link.h"
#include "controls/x_cmd_btn.h"
#include "workflow/about_dlg.h"
#include "workflow/harness.h"

// Of no namespace, as the resources are.
static void DropArt() { Q_CLEANUP_RESOURCE(art); }
static void BringArt() { Q_INIT_RESOURCE(art); }

namespace velmora::workflow {
namespace {

using namespace resources;
using testing::ElementsAre;
using testing::IsEmpty;

class AboutTest : public WizardTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(machine_.base / "Lang");
    for (const char* name : {"English", "French", "German", "Italian", "Spanish"}) {
      std::filesystem::copy_file(
          std::filesystem::path(VELMORA_SOURCE_DIR) / "src/resources/lang" / (std::string(name) + ".INI"),
          machine_.base / "Lang" / (std::string(name) + ".INI"));
    }
    Start();
    machine_.log.clear();
  }

  /// Starts the program again with another language.
  void UseLanguage(int number) {
    frame_.reset();
    machine_.Write("prefix/settings.ini", "[OST to PST Texts]\nIDS_LANGUAGE=" + std::to_string(number) + "\n");
    Start();
  }

  static void Click(CAboutDlg& about, int id) {
    QTest::mouseClick(about.findChild<controls::CHyperLink*>(QString::number(id)), Qt::LeftButton);
  }
};

TEST_F(AboutTest, OpensFromTheMenuOfAPageAndClosesByItsButton) {
  Press(kBrowseStartId);
  Press(kMenuButtonId);
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  const auto& button = Control<QWidget>(kMenuButtonId);
  const QPoint corner = button.mapToGlobal(button.rect().bottomLeft());
  // Where the screen ends before the menu does, the menu moves aside.
  if (menu->screen()->geometry().contains(QRect(corner, menu->size()))) {
    EXPECT_EQ(menu->pos(), corner);
  }
  ASSERT_EQ(menu->actions().size(), 2);
  EXPECT_EQ(menu->actions()[0]->text(), "&Help");
  EXPECT_EQ(menu->actions()[1]->text(), "&About");
  bool opened = false;
  frame_->DpiX = frame_->DpiY = 96;  // whose figures these are
  InDialog<CAboutDlg>([&](CAboutDlg& about) {
    opened = true;
    EXPECT_EQ(about.windowTitle(), "About Velmora Convert OST to PST");
    EXPECT_EQ(about.size(), QSize(435, 190));
    auto* ok = about.findChild<controls::CXCmdBtn*>("2");
    EXPECT_EQ(ok->text(), "OK");
    QTest::mouseClick(ok, Qt::LeftButton);
  });
  QTest::keyClick(menu, Qt::Key_A);
  EXPECT_TRUE(Comes([&] { return opened && QApplication::activeModalWidget() == nullptr; }));
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(AboutTest, StandsInTheMiddleOfItsPage) {
  CurrentPage().window()->move(40, 30);
  CAboutDlg about(*frame_, &CurrentPage());
  EXPECT_EQ(about.geometry().center(), CurrentPage().window()->geometry().center());
}

TEST_F(AboutTest, EnterIsOkButOnALink) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
    CAboutDlg about(*frame_, nullptr);
    about.open();
    auto* ok = about.findChild<controls::CXCmdBtn*>("2");
    ok->setFocus();
    QTest::keyClick(ok, key);
    EXPECT_FALSE(about.isVisible());
    EXPECT_EQ(about.result(), int(QDialog::Accepted));
  }
  CAboutDlg about(*frame_, nullptr);
  about.open();
  machine_.log.clear();
  QTest::keyClick(about.findChild<controls::CHyperLink*>(QString::number(CAboutDlg::kMakerId)), Qt::Key_Return);
  EXPECT_TRUE(about.isVisible());
  EXPECT_THAT(machine_.log, ElementsAre("open https://www.velmora.example/en"));
}

TEST_F(AboutTest, GrowsWithTheDisplayAndItsLettersToo) {
  for (const int dpi : {96, 120, 144, 192}) {
    frame_->DpiX = frame_->DpiY = dpi;
    CAboutDlg about(*frame_, nullptr);
    EXPECT_EQ(about.size(), QSize(435, 190) * (dpi / 96.0)) << dpi;
    EXPECT_EQ(about.font().pixelSize(), qRound(11 * dpi / 96.0)) << dpi;
    const auto* link = about.findChild<controls::CHyperLink*>(QString::number(CAboutDlg::kMakerId));
    EXPECT_EQ(link->font().pixelSize(), about.font().pixelSize()) << dpi;
  }
}

TEST_F(AboutTest, ItsHeadingIsBold) {
  for (int language = 0; language < 5; ++language) {
    UseLanguage(language);
    frame_->DpiX = frame_->DpiY = 96;  // whose figures these are
    CAboutDlg about(*frame_, nullptr);
    const QFont heading = about.HeadingFont();
    EXPECT_TRUE(heading.bold());
    EXPECT_FALSE(about.font().bold());
    const QString caption = about.accessibleDescription().section(u' ', 0, -2);
    const int width = QFontMetrics(heading).horizontalAdvance(caption);
    // What is painted where the heading stands has the strokes of bold letters.
    const qreal scale = about.devicePixelRatioF();
    QImage drawn(QSize(372, 20) * scale, QImage::Format_RGB32);
    drawn.setDevicePixelRatio(scale);
    drawn.fill(Qt::white);
    {
      QPainter painter(&drawn);
      painter.setPen(QColor(0x0C, 0x6F, 0xAD));
      painter.setFont(heading);
      painter.drawText(QRect(0, 0, width, 20), Qt::AlignLeft, caption);
    }
    const QImage seen = about.grab().toImage();
    const auto ink = [](const QImage& picture) {
      int dark = 0;
      for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) dark += 255 - qGray(picture.pixel(x, y));
      }
      return dark;
    };
    const QRect place(QPoint(20, 77) * scale, QSize(width, 14) * scale);
    EXPECT_NEAR(ink(seen.copy(place)), ink(drawn.copy(QRect(QPoint(0, 0), place.size()))), 2000 * scale * scale);
  }
}

TEST_F(AboutTest, IsPaintedOnWhiteWithABorderAndTwoLines) {
  frame_->DpiX = frame_->DpiY = 96;  // whose figures these are
  CAboutDlg about(*frame_, nullptr);
  const QImage picture = about.grab().toImage();
  const qreal scale = picture.devicePixelRatio();
  const auto at = [&](int x, int y) {
    return picture.pixelColor(int((x + 0.5) * scale), int((y + 0.5) * scale)).rgb();
  };
  EXPECT_EQ(at(0, 100), 0xFF565656u);
  EXPECT_EQ(at(1, 100), 0xFF565656u);
  EXPECT_EQ(at(434, 189), 0xFF565656u);
  EXPECT_EQ(at(5, 100), 0xFFFFFFFFu);
  EXPECT_EQ(at(200, 70), 0xFFB4B4B4u);
  bool dotted = false;
  for (int y = 127; y <= 145; ++y) dotted = dotted || at(63, y) != 0xFFFFFFFFu;
  EXPECT_TRUE(dotted);
}

TEST_F(AboutTest, TheHelpOfTheMenuOpensTheGuide) {
  machine_.Write("prefix/vm-oxp.html");
  Press(kBrowseStartId);
  Press(kMenuButtonId);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_H);
  Settle();
  EXPECT_THAT(machine_.log, ElementsAre("open " + (machine_.base / "vm-oxp.html").string()));
}

TEST_F(AboutTest, IsWrittenInTheChosenLanguage) {
  UseLanguage(1);
  CAboutDlg about(*frame_, &CurrentPage());
  EXPECT_EQ(about.windowTitle(), "À propos de Velmora Convert OST to PST");
  EXPECT_EQ(CurrentPage().window()->windowTitle(), "Velmora Convert OST to PST")
      << "the wizard is in English whatever the language";
}

TEST_F(AboutTest, EveryLanguageFitsIntoTheWindow) {
  for (int language = 0; language < 5; ++language) {
    UseLanguage(language);
    CAboutDlg about(*frame_, nullptr);
    const auto controls = about.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    EXPECT_EQ(controls.size(), 4) << language;
    for (const QWidget* control : controls) {
      EXPECT_TRUE(about.rect().contains(control->geometry())) << language << " " << control->objectName().toStdString();
      for (const QWidget* other : controls) {
        EXPECT_TRUE(control == other || !control->geometry().intersects(other->geometry()))
            << language << " " << control->objectName().toStdString() << " " << other->objectName().toStdString();
      }
    }
  }
}

TEST_F(AboutTest, ALinkOpensItsTarget) {
  CAboutDlg about(*frame_, nullptr);
  for (const int id : {CAboutDlg::kUninstallId, CAboutDlg::kPolicyId, CAboutDlg::kMakerId}) Click(about, id);
  EXPECT_THAT(machine_.log,
              ElementsAre("open https://www.velmora.example/en/uninstall",
                          "open https://www.velmora.example/en/privacy", "open https://www.velmora.example/en"));
}

TEST_F(AboutTest, ALinkThatNothingOpensGoesToTheBrowserItself) {
  CAboutDlg about(*frame_, nullptr);
  for (const int code : {0, 2, 31}) {
    machine_.shellResult = code;
    Click(about, CAboutDlg::kMakerId);
  }
  EXPECT_EQ(machine_.Log("browse https://www.velmora.example/en").size(), 3u);
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(AboutTest, AFailureHasItsText) {
  CAboutDlg about(*frame_, nullptr);
  machine_.shellResult = 5;
  boxes_.Answer(QMessageBox::Ok);
  Click(about, CAboutDlg::kMakerId);
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: The operating system denied access to the specified file."));
  machine_.shellResult = 1;
  boxes_.Answer(QMessageBox::Ok);
  Click(about, CAboutDlg::kMakerId);
  EXPECT_EQ(boxes_.Texts().last(), "Error: No program was found to open:\nhttps://www.velmora.example/en");
  EXPECT_THAT(machine_.Log("browse"), IsEmpty());
}

TEST_F(AboutTest, ALinkThatNotEvenABrowserOpensIsTold) {
  CAboutDlg about(*frame_, nullptr);
  machine_.shellResult = 31;
  machine_.browserOpens = false;
  boxes_.Answer(QMessageBox::Ok);
  Click(about, CAboutDlg::kMakerId);
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: No program was found to open:\nhttps://www.velmora.example/en"));
}

TEST_F(AboutTest, ShowsTheVersionOfTheProgram) {
  EXPECT_EQ(CAboutDlg(*frame_, nullptr).accessibleDescription(), "Version: 1.0.0.8") << "a program without one";
  QCoreApplication::setApplicationVersion("3.2.1.0");
  EXPECT_EQ(CAboutDlg(*frame_, nullptr).accessibleDescription(), "Version: 3.2.1.0");
  QCoreApplication::setApplicationVersion({});
}

TEST_F(AboutTest, AButtonWithoutItsImagesCannotBeMade) {
  DropArt();
  boxes_.Answer(QMessageBox::Ok);
  { const CAboutDlg about(*frame_, nullptr); }
  BringArt();
  EXPECT_EQ(boxes_.Texts(), QStringList("Velmora Convert OST to PST: Failed to create OK button"));
}

TEST_F(AboutTest, ALinkWithoutACaptionCannotBeMade) {
  std::filesystem::remove(machine_.base / "Lang" / "English.INI");
  for (int i = 0; i < 3; ++i) boxes_.Answer(QMessageBox::Ok);
  CAboutDlg about(*frame_, nullptr);
  EXPECT_EQ(boxes_.seen.size(), 3u);
  EXPECT_EQ(boxes_.seen[0].text, "Hyper-link creation fails");
}

}  // namespace
}  // namespace velmora::workflow
