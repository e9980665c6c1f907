#include "controls/x_skin_button.h"

#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

namespace velmora::controls {
namespace {

class XSkinButtonTest : public testing::Test {
 protected:
  void SetUp() override {
    window_.resize(420, 100);
    window_.setStyleSheet("background: #FF0000");
    Place(normal_, 10, "Normal Scan (Recommended)");
    normal_.SetSkin(216, 217, 216, 216, 215);
    Place(smart_, 50, "Smart Scan");
    smart_.SetSkin(220, 219, 220, 220, 264);
    window_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
  }

  static void Place(CxSkinButton& button, int y, const char* text) {
    button.setText(text);
    button.setGeometry(10, y, 392, 29);
  }

  QWidget window_;
  CxSkinButton normal_{&window_};
  CxSkinButton smart_{&window_};
};

TEST_F(XSkinButtonTest, IsDrawnAsPressedWhileChecked) {
  EXPECT_EQ(normal_.ShownPicture(), 216);
  normal_.setChecked(true);
  EXPECT_EQ(normal_.ShownPicture(), 217);
}

TEST_F(XSkinButtonTest, OneOfTheRadiosIsChecked) {
  normal_.setChecked(true);
  QTest::mouseClick(&smart_, Qt::LeftButton);
  EXPECT_TRUE(smart_.isChecked());
  EXPECT_FALSE(normal_.isChecked());
}

TEST_F(XSkinButtonTest, ADoubleClickCountsAsAClick) {
  QSignalSpy clicks(&smart_, &QAbstractButton::clicked);
  const QPointF place(10, 10);
  QMouseEvent twice(QEvent::MouseButtonDblClick, place, smart_.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton, {});
  QApplication::sendEvent(&smart_, &twice);
  QTest::mouseRelease(&smart_, Qt::LeftButton, {}, place.toPoint());
  EXPECT_EQ(clicks.count(), 1);
  EXPECT_TRUE(smart_.isChecked());
}

TEST_F(XSkinButtonTest, LeavingIsNoClickAndTakesThePushedLookAway) {
  const auto move = [this](QPointF place) {
    QMouseEvent event(QEvent::MouseMove, place, smart_.mapToGlobal(place), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&smart_, &event);
  };
  QTest::mousePress(&smart_, Qt::LeftButton, {}, QPoint(10, 10));
  EXPECT_EQ(smart_.ShownPicture(), 219);
  move(QPointF(10, 200));
  EXPECT_EQ(smart_.ShownPicture(), 220);
  move(QPointF(12, 12));
  EXPECT_EQ(smart_.ShownPicture(), 219) << "and is taken back by coming back";
  move(QPointF(10, 200));
  QTest::mouseRelease(&smart_, Qt::LeftButton, {}, QPoint(10, 200));
  EXPECT_FALSE(smart_.isChecked());
}

TEST_F(XSkinButtonTest, ADisabledRadioShowsItsDisabledPicture) {
  smart_.SetSkin(220, 219, 220, 216, 264);
  smart_.setChecked(true);
  smart_.setEnabled(false);
  EXPECT_EQ(smart_.ShownPicture(), 216);
}

TEST_F(XSkinButtonTest, TheMaskCutsTheCornersOut) {
  const QImage seen = window_.grab().toImage();
  const qreal scale = seen.devicePixelRatio();
  const auto colourAt = [&](QPoint at) { return seen.pixelColor((QPointF(at) * scale).toPoint()); };
  EXPECT_EQ(colourAt(normal_.pos()), QColor("#FF0000")) << "the page shows through";
  EXPECT_NE(colourAt(normal_.geometry().center()), QColor("#FF0000"));
}

TEST_F(XSkinButtonTest, TheTextLeavesRoomForThePicture) {
  EXPECT_EQ(normal_.TextRect().left(), 27);
  EXPECT_EQ(normal_.TextRect().right(), 391 - 4);
}

}  // namespace
}  // namespace velmora::controls
