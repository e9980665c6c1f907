#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <condition_variable>
#include <mutex>

#include "controls/x_cmd_btn.h"
#include "workflow/panes/image_list.h"
#include "workflow/panes/list_view_right.h"
#include "workflow/panes/one_folder_session.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/panes/waiting_panels.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using output::Field;
using output::OleDate;
using testing::ElementsAre;
using testing::IsEmpty;

class ItemListTest : public StoreFixture {
 protected:
  ItemListTest() { list_.BuildColumns(); }

  QStringList Row(int row) const {
    QStringList texts;
    for (int column = 0; column < 4; ++column) texts << list_.model()->index(row, column).data().toString();
    return texts;
  }
  static QImage PixelsOf(const QIcon& picture) { return picture.pixmap(16, 16).toImage(); }
  /// The number of the picture that stands before a row; -1: none of the strip.
  int PictureOf(int row) const {
    const QImage shown = PixelsOf(list_.model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>());
    const std::vector<QIcon> strip = LoadImageList(197);
    for (std::size_t i = 0; i < strip.size(); ++i) {
      if (PixelsOf(strip[i]) == shown) return int(i);
    }
    return -1;
  }
  void Send(std::uint32_t code, std::uint32_t number = 0, text::TextView text = {}) {
    list_.OnMessage({.code = code, .number = number, .text = text::Text(text)});
  }
  void List(text::TextView folder) {
    Send(32834, 0, PathOf(folder));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !list_.ListBusy(); }, 20000));
  }

  std::vector<RunMessage> sent_;
  CListViewRight list_{nullptr, finished_, [this](const RunMessage& message) { sent_.push_back(message); }};
};

TEST_F(ItemListTest, TheFourthColumnKeepsTheTitleOfTheThird) {
  QStringList titles;
  for (int i = 0; i < 4; ++i) titles << list_.model()->headerData(i, Qt::Horizontal).toString();
  EXPECT_EQ(titles, QStringList({"From", "To", "Subject", "Subject"}));
}

class ColumnsTest : public ItemListTest {
 protected:
  ColumnsTest() { list_.show(); }

  /// The widths of the columns in a list of that width between its frames.
  std::vector<int> WidthsIn(int width) {
    list_.resize(width + list_.width() - list_.viewport()->width(), 300);
    EXPECT_EQ(list_.viewport()->width(), width);
    std::vector<int> widths;
    for (int column = 0; column < 4; ++column) widths.push_back(list_.columnWidth(column));
    return widths;
  }
  bool Scrolls() {
    QCoreApplication::processEvents();
    return list_.horizontalScrollBar()->maximum() > 0;
  }
};

TEST_F(ColumnsTest, HaveTheirWidths) {
  EXPECT_THAT(WidthsIn(763), ElementsAre(212, 212, 212, 127));
  EXPECT_FALSE(Scrolls());
}

TEST_F(ColumnsTest, TheLastOneTakesWhatIsLeft) {
  EXPECT_THAT(WidthsIn(900), ElementsAre(212, 212, 212, 264));
  EXPECT_FALSE(Scrolls());
}

TEST_F(ColumnsTest, TheLastOneGivesUpWhatIsBlankBehindADate) {
  for (const int width : {740, 762, 763, 740}) {
    EXPECT_THAT(WidthsIn(width), ElementsAre(212, 212, 212, width - 3 * 212));
    EXPECT_FALSE(Scrolls()) << width;
    Send(32832, 1, u"Ann");
    Send(32832, 4, u"12 /31 /2011");
    const QModelIndex date = list_.model()->index(0, 3);
    EXPECT_LE(list_.sizeHintForIndex(date).width(), list_.visualRect(date).width());
  }
}

TEST_F(ColumnsTest, WhereADateHasNoRoomTheListScrolls) {
  EXPECT_THAT(WidthsIn(660), ElementsAre(212, 212, 212, 127));
  EXPECT_TRUE(Scrolls());
}

TEST_F(ItemListTest, HasNoColumnsUntilTheyAreBuilt) {
  CListViewRight fresh(nullptr, finished_, [](const RunMessage&) {});
  EXPECT_FALSE(fresh.HasColumns());
  EXPECT_EQ(fresh.model()->columnCount(), 0);
  EXPECT_EQ(fresh.findChildren<controls::CXCmdBtn*>("1001").size(), 2);
  fresh.BuildColumns();
  EXPECT_TRUE(fresh.HasColumns());
  EXPECT_EQ(fresh.findChildren<controls::CXCmdBtn*>("1001").size(), 0);
}

TEST_F(ItemListTest, ThePlaceholdersKeepTheirPlacesInAnyPane) {
  CListViewRight fresh(nullptr, finished_, [](const RunMessage&) {});
  fresh.resize(900, 640);
  fresh.grab();
  const auto placeholders = fresh.findChildren<controls::CXCmdBtn*>("1001");
  EXPECT_EQ(placeholders[0]->geometry(), QRect(0, 0, 450, 700));
  EXPECT_EQ(placeholders[1]->geometry(), QRect(450, 240, 470, 400));
}

TEST_F(ItemListTest, TheFirstFieldMakesARowAndTheOthersFillIt) {
  Send(32832, 1, u"Ann");
  Send(32832, 2, u"Bob");
  Send(32832, 3, u"Hello");
  Send(32832, 4, u"5/4/2011");
  Send(32832, 1, u"Cid");
  ASSERT_EQ(list_.RowCount(), 2);
  EXPECT_EQ(Row(0), QStringList({"Ann", "Bob", "Hello", "5/4/2011"}));
  EXPECT_EQ(Row(1), QStringList({"Cid", "", "", ""}));
}

TEST_F(ItemListTest, FieldsWithoutARowAndFieldsThatDoNotExistAreNothing) {
  Send(32832, 2, u"Bob");
  Send(32832, 0, u"x");
  Send(32832, 5, u"x");
  Send(32835);
  EXPECT_EQ(list_.RowCount(), 0);
}

TEST_F(ItemListTest, TheCurrentRowIsMarkedForItsAttachments) {
  Send(32832, 1, u"Ann");
  Send(32835);
  Send(32832, 1, u"Bob");
  EXPECT_EQ(PictureOf(0), 2);
  EXPECT_EQ(PictureOf(1), 1);
  Send(32835);
  EXPECT_EQ(PictureOf(1), 2);
}

TEST_F(ItemListTest, ClearingTakesAllRowsAndTheCurrentOne) {
  Send(32832, 1, u"Ann");
  Send(32833);
  EXPECT_EQ(list_.RowCount(), 0);
  Send(32832, 3, u"Late");
  EXPECT_EQ(list_.RowCount(), 0);
}

TEST_F(ItemListTest, EachNewRowComesIntoView) {
  list_.resize(800, 200);
  list_.show();
  for (int i = 0; i < 100; ++i) Send(32832, 1, u"Ann");
  const auto isVisible = [this] {
    return list_.visualRect(list_.model()->index(99, 0)).bottom() <= list_.viewport()->height();
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return list_.verticalScrollBar()->value() > 0 && isVisible(); }));
}

TEST_F(ItemListTest, CellsShow300CharactersAndCopyThemAll) {
  const QString subject = "first\nsecond " + QString(40000, u'x');
  AddItem(AddFolder(u"Inbox", u"IPF.Note"), u"IPM.Note", {{Field::Subject, FromQt(subject)}});
  const auto expectCell = [&] {
    const QModelIndex cell = list_.model()->index(0, 2);
    EXPECT_EQ(cell.data().toString(), "first second " + subject.mid(13, 287) + QChar(0x2026));
    list_.setCurrentIndex(cell);
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&list_, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), subject);
  };
  List(u"Inbox");
  expectCell();
  Send(32833);
  Send(32832, 1, u"Ann");
  Send(32832, 3, FromQt(subject));
  expectCell();
}

TEST_F(ItemListTest, ATextOf300CharactersIsShownWhole) {
  Send(32832, 1, text::Text(300, u'x'));
  EXPECT_EQ(Row(0)[0], QString(300, u'x'));
}

TEST_F(ItemListTest, RowsAreStriped) {
  list_.resize(800, 200);
  for (int i = 0; i < 2; ++i) Send(32832, 1, u"");
  const QImage shown = list_.viewport()->grab().toImage();
  const auto colourOf = [&](int row) {
    return shown.pixelColor(700, list_.visualRect(list_.model()->index(row, 3)).center().y());
  };
  EXPECT_EQ(colourOf(0), QColor(255, 255, 255));
  EXPECT_EQ(colourOf(1), QColor(232, 232, 244));
}

TEST_F(ItemListTest, ListsAFolderInStoreOrder) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  const OleDate date{40667.604247};
  AddItem(folder, u"IPM.Note",
          {{Field::SenderName, u"Zoe"}, {Field::To, u"Bob; Cid"}, {Field::Subject, u"Z"}, {Field::ReceivedTime, date}});
  AddItem(folder, u"IPM.Note", {{Field::SenderName, u"Ann"}, {Field::Subject, u"A"}, {Field::ReceivedTime, date}});
  AddItem(folder, u"IPM.Note", {{Field::ReceivedTime, date}});
  List(u"Inbox");
  ASSERT_EQ(list_.RowCount(), 3);
  EXPECT_EQ(Row(0), QStringList({"Zoe", "Bob; Cid", "Z", "5/4/2011"}));
  EXPECT_EQ(Row(1), QStringList({"Ann", "", "A", "5 /4 /2011"})) << "later dates have blanks";
  EXPECT_EQ(Row(2), QStringList({"", "", "", "5 /4 /2011"}));
}

TEST_F(ItemListTest, ADateThatStandsForNoneLeavesItsColumnEmpty) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"A"}, {Field::ReceivedTime, OleDate{949633.0}}});
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"B"}});
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"C"}, {Field::ReceivedTime, OleDate{949998.0}}});
  List(u"Inbox");
  ASSERT_EQ(list_.RowCount(), 3);
  EXPECT_EQ(Row(0), QStringList({"", "", "A", ""}));
  EXPECT_EQ(Row(1), QStringList({"", "", "B", ""}));
  EXPECT_EQ(Row(2), QStringList({"", "", "C", "1 /1 /4501"})) << "the grid's date for none is none here";
}

struct OneByte : output::ContentSource {
  std::uint64_t Size() const override { return 1; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset > 0 || out.empty()) return 0;
    out[0] = std::byte{1};
    return 1;
  }
};

TEST_F(ItemListTest, AnItemWithAttachmentsIsMarked) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  AddItem(folder, u"IPM.Note")->Attachments()->Add(OneByte(), u"a.txt");
  AddItem(folder, u"IPM.Note");
  List(u"Inbox");
  ASSERT_EQ(list_.RowCount(), 2);
  EXPECT_EQ(PictureOf(0), 2);
  EXPECT_EQ(PictureOf(1), 1);
  Send(32835);
  EXPECT_EQ(PictureOf(1), 1) << "a listing has no current row";
}

TEST_F(ItemListTest, AnEmptyFolderHasNoRowsAndLeavesTheListFree) {
  AddFolder(u"Inbox", u"IPF.Note");
  auto* loading = list_.findChild<CDlgLoading*>();
  list_.show();
  Send(32834, 0, PathOf(u"Inbox"));
  EXPECT_TRUE(list_.ListBusy());
  EXPECT_TRUE(loading->isVisible());
  ASSERT_TRUE(QTest::qWaitFor([this] { return !list_.ListBusy(); }));
  EXPECT_FALSE(loading->isVisible());
  EXPECT_EQ(list_.RowCount(), 0);
}

TEST_F(ItemListTest, AFolderThatIsNotThereHasNoRows) {
  List(u"Nowhere");
  EXPECT_EQ(list_.RowCount(), 0);
}

TEST_F(ItemListTest, AListingBlanksTheBodyAndRenewsTheSelectionAtItsEnd) {
  AddItem(AddFolder(u"Inbox", u"IPF.Note"), u"IPM.Note");
  Send(32834, 0, PathOf(u"Inbox"));
  EXPECT_THAT(sent_, ElementsAre(RunMessage{.code = 32849}));
  ASSERT_TRUE(QTest::qWaitFor([this] { return !list_.ListBusy(); }));
  EXPECT_THAT(sent_, ElementsAre(RunMessage{.code = 32849}, RunMessage{.code = 32818}));
}

TEST_F(ItemListTest, AFreshListingTakesThePlaceOfOneUnderWay) {
  const auto inbox = AddFolder(u"Inbox", u"IPF.Note");
  for (int i = 0; i < 2000; ++i) AddItem(inbox, u"IPM.Note", {{Field::Subject, u"Old"}});
  AddItem(AddFolder(u"Drafts", u"IPF.Note"), u"IPM.Note", {{Field::Subject, u"New"}});
  Send(32834, 0, PathOf(u"Inbox"));
  Send(32833);
  List(u"Drafts");
  QTest::qWait(50);
  ASSERT_EQ(list_.RowCount(), 1) << "nothing of the first one comes late";
  EXPECT_EQ(Row(0)[2], "New");
}

/// Where a thread waits until it is let go.
class Gate {
 public:
  void Pass() {
    std::unique_lock lock(mutex_);
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
  }
  void WaitUntilReached() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return reached_; });
  }
  void Open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool reached_ = false, open_ = false;
};

TEST_F(ItemListTest, WindowsStayAliveWhileAFolderIsRead) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"First"}});
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"Second"}});
  Gate gate;
  output::Ref<output::RDOSession> session;
  auto store = std::make_shared<FinishedStore>(session, [&](text::TextView) {
    return std::make_shared<OneFolderSession>(folder, OneFolderSession::Hooks{.onNext = [&] { gate.Pass(); }});
  });
  CListViewRight list(nullptr, store, [](const RunMessage&) {});
  list.BuildColumns();
  list.OnMessage({.code = 32834, .text = u"any"});
  gate.WaitUntilReached();
  bool alive = false;
  QTimer::singleShot(0, &list, [&] { alive = true; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return alive; }));
  EXPECT_TRUE(list.ListBusy());
  gate.Open();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !list.ListBusy(); }));
  EXPECT_EQ(list.RowCount(), 2);
}

class ItemListInputTest : public ItemListTest {
 protected:
  ItemListInputTest() {
    const auto folder = AddFolder(u"Inbox", u"IPF.Note");
    for (int i = 0; i < 3; ++i) AddItem(folder, u"IPM.Note");
    list_.resize(800, 300);
    list_.show();
    List(u"Inbox");
    sent_.clear();
  }
  void Click(int row) {
    QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, list_.visualRect(list_.model()->index(row, 1)).center());
  }
  RunMessage Show(std::uint32_t key) const { return {.code = 32848, .number = key, .text = PathOf(u"Inbox")}; }
};

TEST_F(ItemListInputTest, AClickOnARowShowsItsBody) {
  Click(1);
  EXPECT_EQ(list_.SelectedRow(), 1);
  EXPECT_THAT(sent_, ElementsAre(Show(0)));
}

TEST_F(ItemListInputTest, AClickBesideTheRowsShowsNothing) {
  QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, QPoint(400, 250));
  EXPECT_THAT(sent_, IsEmpty());
}

TEST_F(ItemListInputTest, UpAndDownTellTheirKeyBeforeTheSelectionMoves) {
  Click(1);
  sent_.clear();
  QTest::keyClick(&list_, Qt::Key_Down);
  EXPECT_THAT(sent_, ElementsAre(Show(40)));
  EXPECT_EQ(list_.SelectedRow(), 2);
  QTest::keyClick(&list_, Qt::Key_Up);
  EXPECT_THAT(sent_, ElementsAre(Show(40), Show(38)));
  EXPECT_EQ(list_.SelectedRow(), 1);
}

TEST_F(ItemListInputTest, OneRowIsSelectedAtATime) {
  Click(0);
  for (const Qt::KeyboardModifier held : {Qt::ControlModifier, Qt::ShiftModifier}) {
    const QPoint place = list_.visualRect(list_.model()->index(2, 1)).center();
    QTest::mouseClick(list_.viewport(), Qt::LeftButton, held, place);
    ASSERT_EQ(list_.selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(list_.selectionModel()->selectedRows()[0].row(), 2);
    Click(0);
  }
  list_.selectAll();
  EXPECT_EQ(list_.selectionModel()->selectedRows().size(), 1);
}

TEST_F(ItemListInputTest, OtherKeysShowNothing) {
  Click(1);
  sent_.clear();
  QTest::keyClick(&list_, Qt::Key_Home);
  EXPECT_EQ(list_.SelectedRow(), 0);
  EXPECT_THAT(sent_, IsEmpty());
}

TEST_F(ItemListInputTest, AClickOnAHeaderSortsNothing) {
  QTest::mouseClick(list_.horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(20, 5));
  EXPECT_FALSE(list_.isSortingEnabled());
  EXPECT_FALSE(list_.horizontalHeader()->sectionsClickable());
  EXPECT_THAT(sent_, IsEmpty());
}

}  // namespace
}  // namespace velmora::workflow
