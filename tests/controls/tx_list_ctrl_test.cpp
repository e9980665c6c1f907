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

/// The row that the last signal named; -2 when there was none.
int LastOf(const QSignalSpy& chosen) { return chosen.isEmpty() ? -2 : chosen.last()[0].toInt(); }

TEST_F(TxListCtrlTest, WhateverMovesTheHighlightChooses) {
  list_.Rows().Append({"/mail/a.ost", "/mail/b.ost", "/mail/c.ost", "/mail/d.ost"});
  QApplication::processEvents();
  list_.setFocus();
  QSignalSpy chosen(&list_, &CTXListCtrl::RowChosen);
  const auto highlighted = [this] {
    const QModelIndexList rows = list_.selectionModel()->selectedRows();
    return rows.size() == 1 ? rows.first().row() : -1;
  };
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
  EXPECT_EQ(LastOf(chosen), 1);
  QTest::mouseClick(list_.viewport(), Qt::RightButton, {}, MiddleOf(2));
  EXPECT_EQ(highlighted(), 2);
  EXPECT_EQ(LastOf(chosen), 2) << "the other button";
  QTest::keyClicks(&list_, "/mail/d");
  EXPECT_EQ(highlighted(), 3);
  EXPECT_EQ(LastOf(chosen), 3) << "letters that are typed";
  QTest::mousePress(list_.viewport(), Qt::LeftButton, {}, MiddleOf(0));
  EXPECT_EQ(LastOf(chosen), 0) << "before the button is let go";
  QTest::mouseRelease(list_.viewport(), Qt::LeftButton, {}, MiddleOf(3));
  EXPECT_EQ(LastOf(chosen), highlighted());
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, Qt::ControlModifier, MiddleOf(highlighted()));
  EXPECT_EQ(highlighted(), -1);
  EXPECT_EQ(LastOf(chosen), -1) << "taken back";
}

TEST_F(TxListCtrlTest, AClickWhereNoRowIsTakesTheHighlightAway) {
  list_.Rows().Append({"a", "b"});
  QApplication::processEvents();
  for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
    QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
    QSignalSpy chosen(&list_, &CTXListCtrl::RowChosen);
    QTest::mouseClick(list_.viewport(), button, {}, QPoint(100, list_.viewport()->height() - 4));
    EXPECT_FALSE(list_.selectionModel()->hasSelection());
    EXPECT_EQ(LastOf(chosen), -1);
  }
}

TEST_F(TxListCtrlTest, RowsThatAreTakenAwayLeaveNoChoice) {
  list_.Rows().Append({"a", "b"});
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
  QSignalSpy chosen(&list_, &CTXListCtrl::RowChosen);
  list_.Rows().Clear();
  EXPECT_EQ(LastOf(chosen), -1);
}

TEST_F(TxListCtrlTest, ARowThatComesOnTopLeavesTheChoiceAsItIs) {
  list_.Rows().Append({"a", "b"});
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, MiddleOf(1));
  QString named = "b";
  QObject::connect(&list_, &CTXListCtrl::RowChosen, [&](int row) { named = list_.Rows().TextAt(row); });
  list_.Rows().PutOnTop({"c"});
  EXPECT_EQ(list_.Rows().TextAt(list_.selectionModel()->selectedRows().value(0).row()), "b");
  EXPECT_EQ(named, "b");
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
