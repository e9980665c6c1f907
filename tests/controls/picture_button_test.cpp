#include "controls/picture_button.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace velmora::controls {
namespace {

class PictureButtonTest : public testing::Test {
 protected:
  void SetUp() override {
    window_.resize(200, 100);
    button_.setGeometry(10, 10, 78, 66);
    button_.setText("Fin&d");
    button_.SetPicture(131);
    window_.show();
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    button_.clearFocus();
  }

  QWidget window_;
  PictureButton button_{&window_};
};

TEST_F(PictureButtonTest, ItsMnemonicWorksIt) {
  QSignalSpy clicks(&button_, &QAbstractButton::clicked);
  QTest::keyClick(&window_, Qt::Key_D, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return clicks.count() == 1; }, 2000));
}

TEST_F(PictureButtonTest, EnterIsLeftToThePage) {
  QSignalSpy clicks(&button_, &QAbstractButton::clicked);
  button_.setFocus();
  QTest::keyClick(&button_, Qt::Key_Return);
  EXPECT_EQ(clicks.count(), 0);
}

TEST_F(PictureButtonTest, EachStateLooksDifferent) {
  const QImage normal = button_.grab().toImage();
  button_.setEnabled(false);
  const QImage disabled = button_.grab().toImage();
  button_.setEnabled(true);
  QTest::keyClick(&window_, Qt::Key_Tab);
  ASSERT_TRUE(button_.hasFocus());
  const QImage focused = button_.grab().toImage();
  button_.setDown(true);
  const QImage pressed = button_.grab().toImage();
  EXPECT_NE(normal, disabled);
  EXPECT_NE(normal, focused);
  EXPECT_NE(focused, pressed);
}

TEST_F(PictureButtonTest, TheTextKeepsItsMarginBelowThePicture) {
  button_.SetTextMargin(5);
  const QImage near = button_.grab().toImage();
  button_.SetTextMargin(15);
  EXPECT_EQ(button_.TextMargin(), 15);
  EXPECT_NE(button_.grab().toImage(), near);
}

}  // namespace
}  // namespace velmora::controls
