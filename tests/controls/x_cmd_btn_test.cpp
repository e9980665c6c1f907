#include "controls/x_cmd_btn.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace velmora::controls {
namespace {

class XCmdBtnTest : public testing::Test {
 protected:
  void SetUp() override {
    window_.resize(400, 200);
    button_.setGeometry(20, 20, 240, 100);
    button_.SetImages(138, 139, 139);
    QCursor::setPos(780, 580);  // where no window of a test is
    window_.show();
    window_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    button_.clearFocus();
  }

  void Enter() {
    QEnterEvent event({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&button_, &event);
  }
  void Leave() {
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&button_, &event);
  }

  QWidget window_;
  CXCmdBtn button_{&window_};
};

TEST_F(XCmdBtnTest, ShowsAnImageForEachState) {
  button_.SetImages(145, 147, 146);
  EXPECT_EQ(button_.ShownImage(), 145);
  Enter();
  EXPECT_EQ(button_.ShownImage(), 147);
  QTest::mousePress(&button_, Qt::LeftButton);
  EXPECT_EQ(button_.ShownImage(), 146) << "pressed goes before hover";
  QTest::mouseRelease(&button_, Qt::LeftButton);
  EXPECT_EQ(button_.ShownImage(), 147);
  Leave();
  EXPECT_EQ(button_.ShownImage(), 145);
}

TEST_F(XCmdBtnTest, TheHoveredImageIsReallyDrawn) {
  const QImage normal = button_.grab().toImage();
  Enter();
  EXPECT_NE(button_.grab().toImage(), normal);
  Leave();
  EXPECT_EQ(button_.grab().toImage(), normal);
}

TEST_F(XCmdBtnTest, ImagesOfThePagesHaveFixedSizes) {
  EXPECT_EQ(button_.DrawnSize(), QSize(218, 88));
  button_.SetDisplayClass(DisplayClass::Medium);
  EXPECT_EQ(button_.DrawnSize(), QSize(255, 110));
  button_.SetDisplayClass(DisplayClass::Large);
  EXPECT_EQ(button_.DrawnSize(), QSize(327, 130));
  button_.SetImages(32827, 32828, 32828);
  EXPECT_EQ(button_.DrawnSize(), QSize(66, 66));
  button_.SetDisplayClass(DisplayClass::Medium);
  EXPECT_EQ(button_.DrawnSize(), QSize(55, 55));
  button_.SetDisplayClass(DisplayClass::Natural);
  EXPECT_EQ(button_.DrawnSize(), QSize(44, 44));
}

TEST_F(XCmdBtnTest, OtherImagesFillTheButtonButOnANaturalDisplay) {
  CXCmdBtn other(&window_);
  other.setGeometry(0, 0, 90, 70);
  other.SetImages(0, 0, 0);
  EXPECT_EQ(other.DrawnSize(), QSize(0, 0));
  other.SetDisplayClass(DisplayClass::Large);
  EXPECT_EQ(other.DrawnSize(), QSize(90, 70));
}

TEST_F(XCmdBtnTest, TheCaptionIsWhiteUnlessTheButtonIsImageOnly) {
  button_.SetImages(0, 0, 0);
  const QImage bare = button_.grab().toImage();
  button_.setText("Main");
  EXPECT_NE(button_.grab().toImage(), bare);
  button_.SetImageOnly(true);
  EXPECT_EQ(button_.grab().toImage(), bare);
}

TEST_F(XCmdBtnTest, TheLineOfTheFocusStandsOutFromTheFaceOnEveryDisplay) {
  const auto lightness = [](QColor colour) { return colour.lightnessF(); };
  for (const DisplayClass display : {DisplayClass::Natural, DisplayClass::Medium, DisplayClass::Large}) {
    for (const int image : {136, 138}) {
      button_.clearFocus();
      button_.SetImages(image, image + 1, image + 1);
      button_.SetDisplayClass(display);
      button_.resize(button_.DrawnSize());
      for (const bool hovered : {false, true}) {
        hovered ? Enter() : Leave();
        const QImage bare = button_.grab().toImage();
        window_.activateWindow();
        QTest::keyClick(&window_, Qt::Key_Tab);
        button_.setFocus(Qt::TabFocusReason);
        const QImage focused = button_.grab().toImage();
        button_.clearFocus();
        // Down the middle and across it: where the line is, it is white on a dark face, on all four sides.
        const auto changes = [&](QPoint from, QPoint step, int count) {
          int changed = 0;
          for (int i = 0; i < count; ++i, from += step) {
            const QColor now = focused.pixelColor(from), before = bare.pixelColor(from);
            if (lightness(now) > 0.85 && lightness(now) - lightness(before) > 0.3) ++changed;
          }
          return changed;
        };
        const QSize size = focused.size();
        EXPECT_GE(changes({size.width() / 2, 0}, {0, 1}, size.height() / 4), 1) << "above";
        EXPECT_GE(changes({size.width() / 2, size.height() - 1}, {0, -1}, size.height() / 4), 1) << "below";
        EXPECT_GE(changes({0, size.height() / 2}, {1, 0}, size.width() / 8), 1) << "left";
        EXPECT_GE(changes({size.width() - 1, size.height() / 2}, {-1, 0}, size.width() / 8), 1) << "right";
      }
    }
  }
}

TEST_F(XCmdBtnTest, SpaceWorksItAndEnterDoesNot) {
  QSignalSpy clicks(&button_, &QAbstractButton::clicked);
  button_.setFocus();
  QTest::keyClick(&button_, Qt::Key_Return);
  QTest::keyClick(&button_, Qt::Key_Enter);
  EXPECT_EQ(clicks.count(), 0);
  QTest::keyClick(&button_, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 1);
}

}  // namespace
}  // namespace velmora::controls
