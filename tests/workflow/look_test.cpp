// How the pages look on each class of display, under a dark theme and with the desktop's own letters.
#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>

#include "controls/display_class.h"
#include "controls/file_rows.h"
#include "controls/picture_button.h"
#include "controls/tx_list_ctrl.h"
#include "workflow/about_dlg.h"
#include "workflow/contrast.h"
#include "workflow/custom2_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

constexpr int kDisplays[] = {96, 120, 144};

class LookTest : public WizardTest {
 protected:
  void SetUp() override {
    colours_ = QApplication::palette();
    letters_ = QApplication::font();
    Start();
  }
  void TearDown() override {
    QApplication::setPalette(colours_);
    QApplication::setFont(letters_);
  }

  void UseDisplay(int dpi) {
    frame_->DpiX = frame_->DpiY = dpi;
    LeavePage();
    frame_->OpenDestinationPage(kBrowseTemplate);
  }

  /// All pages on displays of all classes, with something in every field.
  void OnEachDisplay(const std::function<void(Page&)>& look) {
    for (const int dpi : kDisplays) {
      SCOPED_TRACE(dpi);
      frame_->DpiX = frame_->DpiY = dpi;
      OnEachPage([&](Page& page) {
        SCOPED_TRACE(page.metaObject()->className());
        for (auto* edit : page.findChildren<QLineEdit*>()) edit->setText("/srv/mail/outlook.ost");
        for (auto* list : page.findChildren<controls::CTXListCtrl*>())
          list->Rows().Append({"/srv/a.ost", "/srv/b.ost"});
        Settle();
        look(page);
      });
    }
  }

  static void UseDarkTheme() {
    QPalette dark(QColor(50, 50, 50), QColor(30, 30, 30));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
      dark.setColor(role, QColor(240, 240, 240));
    }
    dark.setColor(QPalette::Base, QColor(20, 20, 20));
    QApplication::setPalette(dark);
  }

  /// What a text needs to be read.
  static void ExpectReadable(QWidget& window) {
    const QImage picture = window.grab().toImage();
    int texts = 0;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
      const bool hasText = widget->inherits("QLabel") || widget->inherits("QAbstractButton") ||
                           widget->inherits("QLineEdit") || widget->inherits("QTreeView");
      if (!hasText || !widget->isVisible() || widget->window() != window.window()) continue;
      if (const auto* label = qobject_cast<const QLabel*>(widget); label != nullptr && label->text().isEmpty())
        continue;
      const QRect place(widget->mapTo(&window, QPoint(0, 0)), widget->size());
      // The picture has more pixels than the window where the display is scaled.
      const qreal scale = picture.devicePixelRatio();
      const QRect pixels(place.topLeft() * scale, place.size() * scale);
      EXPECT_GE(ContrastIn(picture.copy(pixels)), widget->isEnabled() ? 4.5 : 3.0)
          << widget->metaObject()->className() << " " << widget->accessibleName().toStdString();
      ++texts;
    }
    EXPECT_GE(texts, 1);
  }

  QPalette colours_;
  QFont letters_;
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

TEST_F(LookTest, EveryControlLiesOnItsPage) {
  OnEachDisplay([](Page& page) {
    for (const QWidget* control : Controls(page)) {
      EXPECT_TRUE(page.rect().contains(control->geometry())) << control->accessibleName().toStdString();
    }
  });
}

TEST_F(LookTest, NoTextOfAPageIsCutOff) {
  OnEachDisplay([](Page& page) {
    for (const QLabel* label : page.findChildren<QLabel*>()) {
      QString text = label->text();
      while (text.endsWith('\n')) text.chop(1);
      const QRect needed =
          label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 10000), Qt::TextWordWrap, text);
      EXPECT_LE(needed.height(), label->height()) << text.toStdString();
      EXPECT_LE(needed.width(), label->width()) << text.toStdString();
    }
    for (const auto* button : page.findChildren<controls::PictureButton*>()) {
      EXPECT_LE(button->sizeHint().width(), button->width()) << button->text().toStdString();
      EXPECT_LE(button->sizeHint().height(), button->height()) << button->text().toStdString();
    }
    for (const auto* edit : page.findChildren<QLineEdit*>()) {
      EXPECT_LE(edit->fontMetrics().height(), edit->height()) << edit->accessibleName().toStdString();
    }
  });
}

TEST_F(LookTest, LargeLettersOfTheDesktopDoNotChangeThePages) {
  const QSize size = CurrentPage().fontMetrics().size(0, "Velmora");
  QFont large = letters_;
  large.setPointSizeF(large.pointSizeF() * 2);
  QApplication::setFont(large);
  OnEachPage([&](Page& page) {
    if (page.size() == QSize(700, 430)) {
      EXPECT_EQ(page.fontMetrics().size(0, "Velmora"), size);
    }
  });
}

TEST_F(LookTest, ThePagesAreReadable) { OnEachDisplay(ExpectReadable); }

TEST_F(LookTest, ADarkThemeLeavesThePagesReadable) {
  UseDarkTheme();
  OnEachDisplay(ExpectReadable);
}

TEST_F(LookTest, BoxesMenusAndTheAboutWindowAreReadableUnderEitherTheme) {
  std::filesystem::create_directories(machine_.base);
  std::filesystem::copy(std::filesystem::path(VELMORA_SOURCE_DIR) / "src/resources/lang", machine_.base / "Lang");
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark);
    if (dark) UseDarkTheme();
    UseDisplay(96);
    boxes_.Answer(QMessageBox::No, [] { ExpectReadable(*QApplication::activeModalWidget()); });
    CloseBox();
    {
      CAboutDlg about(*frame_, &CurrentPage());
      about.show();
      Settle();
      ExpectReadable(about);
    }
    Press(kMenuButtonId);
    auto* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    EXPECT_GE(ContrastIn(menu->grab().toImage()), 4.5);
    menu->close();
    Settle();
  }
  EXPECT_EQ(boxes_.seen.size(), 2u);
}

TEST_F(LookTest, ABoxHasItsOwnPictureAndNoneOnItsButtons) {
  boxes_.Answer(QMessageBox::No, [] {
    auto& box = dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget());
    EXPECT_FALSE(box.findChild<QLabel*>("qt_msgboxex_icon_label")->pixmap().isNull());
    for (const QAbstractButton* button : box.buttons()) EXPECT_TRUE(button->icon().isNull());
  });
  CloseBox();
  EXPECT_EQ(boxes_.seen.size(), 1u);
}

TEST_F(LookTest, AMinimisedPageShowsItsIcon) {
  const QImage open = CurrentPage().grab().toImage();
  CurrentPage().window()->showMinimized();
  const QImage icon = CurrentPage().grab().toImage();
  EXPECT_NE(icon, open);
  const qreal scale = icon.devicePixelRatio();
  EXPECT_EQ(icon.pixelColor(int(150 * scale), int(20 * scale)), QColor(Qt::white)) << "no art around it";
  EXPECT_NE(icon.pixelColor(icon.rect().center()), QColor(Qt::white));
}

TEST_F(LookTest, ThePictureOfTheEndIsPaintedOnceTheRunIsDone) {
  CProgressDlg page(*frame_);
  const QImage before = page.grab().toImage();
  page.OnRunMessage({MSG_DONE, 0, 0, {}});
  const QImage after = page.grab().toImage();
  const QPoint middle = before.rect().center();
  EXPECT_EQ(before.pixelColor(middle), QColor(Qt::white));
  EXPECT_NE(after.pixelColor(middle), QColor(Qt::white));
}

}  // namespace
}  // namespace velmora::workflow
