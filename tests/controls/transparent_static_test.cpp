#include "controls/transparent_static.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>

namespace velmora::controls {
namespace {

/// A page that paints its art in one colour and counts.
class Page : public QWidget {
 public:
  int paints = 0;

 protected:
  void paintEvent(QPaintEvent*) override {
    ++paints;
    QPainter(this).fillRect(rect(), QColor("#00FF00"));
  }
};

TEST(TransparentStaticTest, ThePageShowsThroughAndIsPaintedAtOnceForANewText) {
  Page page;
  page.resize(200, 60);
  CTransparentStatic text(&page);
  text.setGeometry(10, 10, 150, 30);
  page.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
  QTest::qWait(20);
  EXPECT_EQ(page.grab().toImage().pixelColor(155, 35), QColor("#00FF00"));

  const int before = page.paints;
  text.SetText("Opening OST file...");
  EXPECT_GT(page.paints, before) << "without waiting for the event loop";
  EXPECT_EQ(text.text(), "Opening OST file...");
}

TEST(TransparentStaticTest, TakesItsTextAsPlainText) {
  QWidget page;
  CTransparentStatic text(&page);
  text.SetText("<b>a & b</b>");
  EXPECT_EQ(text.text(), "<b>a & b</b>");
  EXPECT_EQ(text.textFormat(), Qt::PlainText);
}

}  // namespace
}  // namespace velmora::controls
