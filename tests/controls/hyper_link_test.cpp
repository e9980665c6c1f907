#include "controls/hyper_link.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace velmora::controls {
namespace {

class HyperLinkTest : public testing::Test {
 protected:
  void SetUp() override {
    window_.resize(300, 100);
    link_.setGeometry(10, 10, 120, 24);
    window_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
    QCursor::setPos(window_.mapToGlobal(QPoint(280, 90)));
  }

  void Leave() {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&link_, &event);
  }

  QWidget window_;
  CHyperLink link_{50052, "How to uninstall", &window_};
};

TEST_F(HyperLinkTest, TellsItsNumberWhenItIsClicked) {
  QSignalSpy clicks(&link_, &CHyperLink::Clicked);
  QTest::mouseClick(&link_, Qt::LeftButton);
  ASSERT_EQ(clicks.count(), 1);
  EXPECT_EQ(clicks[0][0].toInt(), 50052);
}

TEST_F(HyperLinkTest, LettingGoElsewhereIsNoClick) {
  QSignalSpy clicks(&link_, &CHyperLink::Clicked);
  QTest::mousePress(&link_, Qt::LeftButton);
  QTest::mouseRelease(&link_, Qt::LeftButton, {}, QPoint(200, 80));
  EXPECT_EQ(clicks.count(), 0);
  EXPECT_FALSE(link_.IsHovered());
}

TEST_F(HyperLinkTest, ADisabledLinkDoesNothing) {
  QSignalSpy clicks(&link_, &CHyperLink::Clicked);
  link_.setEnabled(false);
  QTest::mouseMove(&link_, QPoint(5, 5));
  QTest::mouseClick(&link_, Qt::LeftButton);
  EXPECT_EQ(clicks.count(), 0);
  EXPECT_FALSE(link_.IsHovered());
}

TEST_F(HyperLinkTest, IsUnderlinedWhileThePointerIsOverIt) {
  const QImage normal = link_.grab().toImage();
  QTest::mouseMove(&link_, QPoint(5, 5));
  EXPECT_TRUE(link_.IsHovered());
  EXPECT_NE(link_.grab().toImage(), normal);
  QCursor::setPos(window_.mapToGlobal(QPoint(280, 90)));
  Leave();
  EXPECT_FALSE(link_.IsHovered());
}

TEST_F(HyperLinkTest, StaysHoveredAWhileIfOnlyATipCameBetween) {
  QTest::mouseMove(&link_, QPoint(5, 5));
  QCursor::setPos(link_.mapToGlobal(QPoint(5, 5)));
  Leave();
  EXPECT_TRUE(link_.IsHovered()) << "the pointer is still there";
  QCursor::setPos(window_.mapToGlobal(QPoint(280, 90)));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !link_.IsHovered(); }, 2000));
}

TEST_F(HyperLinkTest, TheKeyboardWorksIt) {
  QSignalSpy clicks(&link_, &CHyperLink::Clicked);
  link_.setFocus();
  QTest::keyClick(&link_, Qt::Key_Return);
  QTest::keyClick(&link_, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 2);
  EXPECT_EQ(link_.accessibleName(), "How to uninstall");
}

}  // namespace
}  // namespace velmora::controls
