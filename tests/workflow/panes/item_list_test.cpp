#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <condition_variable>
#include <mutex>

#include "controls/x_cmd_btn.h"
#include "workflow/panes/list_view_right.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/panes/waiting_panels.h"

namespace velmora::workflow {
namespace {

using engine::RunMessage;
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
  /// The picture of a row, told apart from the other one by its pixels.
  QImage PictureOf(int row) const {
    return list_.model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>().pixmap(16, 16).toImage();
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

TEST_F(ItemListTest, ColumnsHaveTheirWidths) {
  EXPECT_EQ(list_.columnWidth(0), 212);
  EXPECT_EQ(list_.columnWidth(1), 212);
  EXPECT_EQ(list_.columnWidth(2), 212);
  EXPECT_GE(list_.columnWidth(3), 30) << "the last one takes what is left";
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
  EXPECT_NE(PictureOf(0), PictureOf(1));
  Send(32835);
  EXPECT_EQ(PictureOf(0), PictureOf(1));
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
  EXPECT_NE(PictureOf(0), PictureOf(1));
  Send(32835);
  EXPECT_NE(PictureOf(0), PictureOf(1)) << "a listing has no current row";
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

/// Waits in the second item until it is let go.
class SlowItem : public output::RDOItems {
 public:
  struct Gate {
    std::mutex mutex;
    std::condition_variable changed;
    bool reached = false, open = false;
  };
  SlowItem(output::Ref<output::RDOItems> items, Gate& gate) : items_(std::move(items)), gate_(gate) {}
  std::int32_t Count() const override { return items_->Count(); }
  output::Ref<output::RDOMail> Add(text::TextView) override { return nullptr; }
  output::Ref<output::RDOMail> GetFirst() override { return items_->GetFirst(); }
  output::Ref<output::RDOMail> GetNext() override {
    std::unique_lock lock(gate_.mutex);
    gate_.reached = true;
    gate_.changed.notify_all();
    gate_.changed.wait(lock, [this] { return gate_.open; });
    return items_->GetNext();
  }

 private:
  output::Ref<output::RDOItems> items_;
  Gate& gate_;
};

class SlowSession : public output::RDOSession,
                    public output::RDOFolder,
                    public std::enable_shared_from_this<SlowSession> {
 public:
  SlowSession(output::Ref<output::RDOFolder> folder, SlowItem::Gate& gate) : folder_(std::move(folder)), gate_(gate) {}
  void Logon(text::TextView) override {}
  output::Ref<output::RDOStores> Stores() override { return nullptr; }
  output::Ref<output::RDOFolder> GetDefaultFolder(output::DefaultFolder) override { return nullptr; }
  output::Ref<output::RDOFolder> GetFolderFromPath(text::TextView) override { return shared_from_this(); }
  output::Ref<output::RDOItems> Items() override { return std::make_shared<SlowItem>(folder_->Items(), gate_); }
  output::Ref<output::RDOFolders> Folders() override { return nullptr; }
  output::Ref<output::RDOFolder2> QueryFolder2() override { return nullptr; }
  text::Text Name() const override { return {}; }
  text::Text ContainerClass() const override { return {}; }

 private:
  output::Ref<output::RDOFolder> folder_;
  SlowItem::Gate& gate_;
};

TEST_F(ItemListTest, WindowsStayAliveWhileAFolderIsRead) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"First"}});
  AddItem(folder, u"IPM.Note", {{Field::Subject, u"Second"}});
  SlowItem::Gate gate;
  output::Ref<output::RDOSession> session;
  auto store = std::make_shared<FinishedStore>(
      session, [&](text::TextView) { return std::make_shared<SlowSession>(folder, gate); });
  CListViewRight list(nullptr, store, [](const RunMessage&) {});
  list.BuildColumns();
  list.OnMessage({.code = 32834, .text = u"any"});
  {
    std::unique_lock lock(gate.mutex);
    gate.changed.wait(lock, [&] { return gate.reached; });
  }
  bool alive = false;
  QTimer::singleShot(0, &list, [&] { alive = true; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return alive; }));
  EXPECT_TRUE(list.ListBusy());
  {
    const std::lock_guard lock(gate.mutex);
    gate.open = true;
    gate.changed.notify_all();
  }
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
