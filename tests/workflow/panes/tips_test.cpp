// What a store says is a text and nothing else, also where the mouse rests on it.
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

#include "controls/hostile_texts.h"
#include "controls/shown_tip.h"
#include "workflow/panes/form_view_left.h"
#include "workflow/panes/grid_view.h"
#include "workflow/panes/list_view_right.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using output::Field;

class TipsTest : public StoreFixture {
 protected:
  ~TipsTest() override { EXPECT_FALSE(pipe_.WasOpened()) << "a text was taken for HTML"; }

  static void ExpectTip(QAbstractItemView& view, const QModelIndex& cell, const QString& text) {
    const QLabel* tip = controls::ShownTip(view, cell);
    ASSERT_NE(tip, nullptr) << text.toStdString();
    EXPECT_EQ(controls::ReadOn(*tip), text);
  }
  static void Show(QWidget& pane) {
    pane.resize(900, 500);
    pane.show();
  }

  controls::WatchedPipe pipe_;
  const QStringList texts_ = controls::HostileTexts(pipe_.Path());
};

TEST_F(TipsTest, OfTheListDuringARun) {
  CListViewRight list(nullptr, finished_, [](const RunMessage&) {});
  list.BuildColumns();
  Show(list);
  for (const QString& text : texts_) {
    for (const std::uint32_t field : {1u, 2u, 3u, 4u})
      list.OnMessage({.code = 32832, .number = field, .text = FromQt(text)});
    for (int column = 0; column < 4; ++column) ExpectTip(list, list.model()->index(list.RowCount() - 1, column), text);
  }
}

TEST_F(TipsTest, OfTheListOfAFolder) {
  const auto folder = AddFolder(u"Inbox", u"IPF.Note");
  for (const QString& text : texts_) {
    const text::Text value = FromQt(text);
    AddItem(folder, u"IPM.Note", {{Field::SenderName, value}, {Field::To, value}, {Field::Subject, value}});
  }
  CListViewRight list(nullptr, finished_, [](const RunMessage&) {});
  list.BuildColumns();
  Show(list);
  list.OnMessage({.code = 32834, .text = PathOf(u"Inbox")});
  ASSERT_TRUE(QTest::qWaitFor([&] { return !list.ListBusy(); }, 20000));
  for (int row = 0; row < texts_.size(); ++row) {
    for (int column = 0; column < 3; ++column) ExpectTip(list, list.model()->index(row, column), texts_[row]);
  }
}

TEST_F(TipsTest, OfTheGrid) {
  const auto folder = AddFolder(u"Contacts", u"IPF.Contact");
  for (const QString& text : texts_)
    AddItem(folder, u"IPM.Contact", {{Field::FullName, FromQt(text)}, {Field::LastName, FromQt(text)}});
  CGridView grid(nullptr, finished_);
  Show(grid);
  grid.OnMessage({.code = 32836, .text = PathOf(u"Contacts")});
  auto& view = *grid.findChild<QTreeView*>("1111");
  for (int row = 0; row < texts_.size(); ++row) {
    const QModelIndex category = view.model()->index(row, 0);
    ExpectTip(view, category, texts_[row]);
    ExpectTip(view, view.model()->index(0, 1, category), texts_[row]);
  }
}

TEST_F(TipsTest, OfTheFolders) {
  conversion::RunState state;
  state.convertedName = FromQt(texts_[0] + " Converted");
  std::vector<engine::FolderRecord> folders;
  for (const QString& text : texts_) {
    const auto id = static_cast<std::uint32_t>(0x8082 + 0x20 * folders.size());
    folders.push_back({id, id - 0x20, FromQt(text), u"IPF.Note"});
  }
  CFormViewLeft pane(nullptr, {state, finished_, [](const auto&) {}, [] { return false; }});
  pane.OnFoldersKnown({folders, 0x8022});
  Show(pane);
  pane.OnMessage({.code = 32816, .number = folders.back().nid});
  pane.OnMessage({.code = 32816, .number = 4386, .text = FromQt(texts_[1])});
  auto& tree = *pane.findChild<QTreeWidget*>("1002");
  const auto tipOf = [&](QTreeWidgetItem* item, const QString& text) {
    ExpectTip(tree, tree.indexFromItem(item), text);
    EXPECT_EQ(item->text(0), text);
  };
  QTreeWidgetItem* item = tree.topLevelItem(0);
  tipOf(item, texts_[0] + " Converted");
  tipOf(item->child(1), texts_[1]);
  for (const QString& text : texts_) {
    item = item->child(0);
    tipOf(item, text);
  }
}

}  // namespace
}  // namespace velmora::workflow
