// How the pages look on each class of display and under a dark theme.
#include <QLabel>
#include <QStyleFactory>

#include "controls/picture_button.h"
#include "workflow/custom2_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class LookTest : public WizardTest {
 protected:
  void SetUp() override { Start(); }

  void UseDisplay(int dpi) {
    frame_->DpiX = frame_->DpiY = dpi;
    CurrentPage().hide();
    frame_->OpenDestinationPage(kBrowseTemplate);
  }
};

TEST_F(LookTest, ThePagesHaveTheSizeOfTheirArt) {
  UseDisplay(96);
  EXPECT_EQ(CurrentPage().size(), QSize(700, 430));
  UseDisplay(120);
  EXPECT_EQ(CurrentPage().size(), QSize(815, 530));
  UseDisplay(126);
  EXPECT_EQ(CurrentPage().size(), QSize(700, 430));
  UseDisplay(144);
  EXPECT_EQ(CurrentPage().size(), QSize(1050, 629));
}

TEST_F(LookTest, TheButtonsAtTheTopHaveFixedPlaces) {
  UseDisplay(96);
  EXPECT_EQ(Control<QWidget>(kMenuButtonId).geometry(), QRect(560, 16, 51, 64));
  UseDisplay(120);
  EXPECT_EQ(Control<QWidget>(kMenuButtonId).geometry(), QRect(640, 16, 55, 65));
  EXPECT_EQ(Control<QWidget>(kMainId).geometry(), QRect(720, 16, 55, 65));
  EXPECT_EQ(Control<controls::PictureButton>(kNextId).TextMargin(), 5);
  UseDisplay(144);
  EXPECT_EQ(Control<QWidget>(kMenuButtonId).geometry(), QRect(850, 16, 66, 78));
  EXPECT_EQ(Control<QWidget>(kMainId).geometry(), QRect(950, 16, 66, 78));
  EXPECT_EQ(Control<controls::PictureButton>(kBackId).TextMargin(), 15);
}

TEST_F(LookTest, NoTextOfAPageIsCutOff) {
  const auto look = [](Page& page) {
    for (const QLabel* label : page.findChildren<QLabel*>()) {
      QString text = label->text();
      while (text.endsWith('\n')) text.chop(1);
      const QRect needed =
          label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 10000), Qt::TextWordWrap, text);
      EXPECT_LE(needed.height(), label->height()) << text.toStdString();
      EXPECT_LE(needed.width(), label->width()) << text.toStdString();
    }
  };
  const std::function<void()> openers[] = {[this] { frame_->OpenBrowsePage(); }, [this] { frame_->OpenFindPage(); },
                                           [this] { frame_->OpenProfilePage(); },
                                           [this] { frame_->OpenDestinationPage(kBrowseTemplate); }};
  for (const auto& open : openers) {
    CurrentPage().hide();
    open();
    look(CurrentPage());
  }
  CProgressDlg progress(*frame_);
  look(progress);
}

TEST_F(LookTest, ADarkThemeLeavesThePagesReadable) {
  const QPalette before = QApplication::palette();
  QPalette dark(QColor(30, 30, 30));
  dark.setColor(QPalette::WindowText, Qt::white);
  dark.setColor(QPalette::Text, Qt::white);
  dark.setColor(QPalette::Base, QColor(20, 20, 20));
  QApplication::setPalette(dark);
  UseDisplay(96);
  for (const std::uint16_t id : {kHeadingId, kDestinationTextId, kFieldLabelId, kDestinationEditId}) {
    const QWidget& control = Control<QWidget>(id);
    EXPECT_LT(control.palette().color(QPalette::WindowText).lightness(), 100) << id;
    EXPECT_LT(control.palette().color(QPalette::Text).lightness(), 100) << id;
    EXPECT_GT(control.palette().color(QPalette::Base).lightness(), 200) << id;
  }
  QApplication::setPalette(before);
}

}  // namespace
}  // namespace velmora::workflow
