#include "controls/tx_list_ctrl.h"

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include "controls/file_rows.h"

namespace velmora::controls {
namespace {

class TxListCtrlTest : public testing::Test {
 protected:
  void SetUp() override {
    list_.resize(300, 200);
    list_.SetTitle("File name");
    list_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list_));
  }

  QPoint MiddleOf(int row) { return list_.visualRect(list_.model()->index(row, 0)).center(); }

  CTXListCtrl list_{nullptr};
};

TEST_F(TxListCtrlTest, TheLatestOfTheRowsPutOnTopStandsOnTop) {
  list_.Rows().PutOnTop({"a", "b"});
  list_.Rows().PutOnTop({"c"});
  list_.Rows().Append({"z"});
  QStringList rows;
  for (int row = 0; row < list_.Rows().Count(); ++row) rows << list_.Rows().TextAt(row);
  EXPECT_EQ(rows, QStringList({"c", "b", "a", "z"}));
  EXPECT_EQ(list_.Rows().TextAt(4), "");
  EXPECT_EQ(list_.Rows().TextAt(-1), "");
}

TEST_F(TxListCtrlTest, HasOneColumnWithItsTitle) {
  EXPECT_EQ(list_.header()->count(), 1);
  EXPECT_EQ(list_.model()->headerData(0, Qt::Horizontal).toString(), "File name");
}

TEST_F(TxListCtrlTest, RowsAreStripedFromAPaleFirstRow) {
  list_.Rows().Append({"a", "b"});
  QApplication::processEvents();
  const QImage seen = list_.viewport()->grab().toImage();
  const auto colourOf = [&](int row) {
    const QRect place = list_.visualRect(list_.model()->index(row, 0));
    return seen.pixelColor((QPointF(place.right() - 5, place.center().y()) * seen.devicePixelRatio()).toPoint());
  };
  EXPECT_EQ(colourOf(0), QColor(232, 232, 244));
  EXPECT_EQ(colourOf(1), QColor(255, 255, 255));
}

TEST_F(TxListCtrlTest, AChosenRowIsOfOneColour) {
  list_.Rows().Append({"/a.ost", "/b.ost"});
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
  const QImage seen = list_.viewport()->grab().toImage();
  const QRect place = list_.visualRect(list_.model()->index(1, 0));
  const QColor colour = list_.palette().color(QPalette::Active, QPalette::Highlight);
  for (const QPoint& corner : {place.topLeft(), place.topRight(), place.bottomLeft(), place.bottomRight()}) {
    EXPECT_EQ(seen.pixelColor(corner * seen.devicePixelRatio()), colour);
  }
}

TEST_F(TxListCtrlTest, AnEmptyListWithoutAHintShowsJustItsColour) {
  const QImage seen = list_.viewport()->grab().toImage();
  const QColor colour = list_.palette().color(QPalette::Active, QPalette::Base);
  for (int y = 0; y < seen.height(); ++y) {
    for (int x = 0; x < seen.width(); ++x) ASSERT_EQ(seen.pixelColor(x, y), colour) << x << "," << y;
  }
}

TEST_F(TxListCtrlTest, TheHintStandsBelowTheFirstThirdWhileTheListIsEmpty) {
  const QImage empty = list_.viewport()->grab().toImage();
  list_.SetHint("The OST files that are found will be listed here.");
  const QImage hinted = list_.viewport()->grab().toImage();
  ASSERT_NE(hinted, empty);
  const int third = hinted.height() / 3;
  EXPECT_EQ(hinted.copy(0, 0, hinted.width(), third), empty.copy(0, 0, empty.width(), third));
  list_.Rows().Append({"a"});
  list_.SetHint({});
  const QImage withRow = list_.viewport()->grab().toImage();
  list_.SetHint("The OST files that are found will be listed here.");
  EXPECT_EQ(list_.viewport()->grab().toImage(), withRow) << "no hint beside a row";
}

TEST_F(TxListCtrlTest, TellsTheRowThatIsClickedAndAClickBelowTheRows) {
  list_.Rows().Append({"a", "b"});
  QApplication::processEvents();
  QSignalSpy chosen(&list_, &CTXListCtrl::RowChosen);
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, QPoint(100, list_.viewport()->height() - 4));
  ASSERT_EQ(chosen.count(), 2);
  EXPECT_EQ(chosen[0][0].toInt(), 1);
  EXPECT_EQ(chosen[1][0].toInt(), -1);
}

TEST_F(TxListCtrlTest, TheKeyboardChoosesRowsToo) {
  list_.Rows().Append({"a", "b"});
  list_.setFocus();
  QSignalSpy chosen(&list_, &CTXListCtrl::RowChosen);
  QTest::keyClick(&list_, Qt::Key_Home);
  ASSERT_EQ(chosen.count(), 1) << "the first row, which has the focus already";
  EXPECT_EQ(chosen[0][0].toInt(), 0);
  QTest::keyClick(&list_, Qt::Key_Down);
  ASSERT_FALSE(chosen.isEmpty());
  EXPECT_EQ(chosen.last()[0].toInt(), 1);
}

}  // namespace
}  // namespace velmora::controls
