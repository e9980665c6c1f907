#include "workflow/panes/grid_view.h"

#include <QLabel>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "controls/up_dialog.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {
namespace {

using output::Field;

class GridViewTest : public StoreFixture {
 protected:
  void Fill(std::uint32_t code, text::TextView folder) { grid_.OnMessage({.code = code, .text = PathOf(folder)}); }
  QString At(int category, int row, int column) const {
    const QModelIndex parent = grid_.Rows().index(category, 0);
    return grid_.Rows().index(row, column, parent).data().toString();
  }

  CGridView grid_{nullptr, finished_};
};

TEST_F(GridViewTest, ShowsEachItemAsACategoryWithItsFields) {
  const auto folder = AddFolder(u"Contacts", u"IPF.Contact");
  AddItem(folder, u"IPM.Contact",
          {{Field::FullName, u"Ann Other"}, {Field::LastName, u"Other"}, {Field::Email2Address, u"a@b"}});
  AddItem(folder, u"IPM.Contact");
  Fill(32836, u"Contacts");
  ASSERT_EQ(grid_.Rows().rowCount(), 2);
  EXPECT_EQ(grid_.Rows().index(0, 0).data().toString(), "Ann Other");
  ASSERT_EQ(grid_.Rows().rowCount(grid_.Rows().index(0, 0)), 2);
  EXPECT_EQ(At(0, 0, 0), "Last Name");
  EXPECT_EQ(At(0, 0, 1), "Other");
  EXPECT_EQ(At(0, 1, 0), "Emai2 Address");
  EXPECT_EQ(grid_.Rows().rowCount(grid_.Rows().index(1, 0)), 0);
}

TEST_F(GridViewTest, EveryFillReadsItsKind) {
  const struct {
    std::uint32_t code;
    const char16_t* messageClass;
  } kinds[] = {{32836, u"IPM.Contact"},
               {32838, u"IPM.Task"},
               {32839, u"IPM.Appointment"},
               {32840, u"IPM.StickyNote"},
               {32841, u"IPM.Journal"}};
  for (const auto& kind : kinds) {
    const text::Text name = text::FromUtf8(std::to_string(kind.code));
    AddItem(AddFolder(name, u"IPF.Note"), kind.messageClass, {{Field::ConversationTopic, u"Topic"}});
    grid_.OnMessage({.code = 32837});
    Fill(kind.code, name);
    ASSERT_EQ(grid_.Rows().rowCount(), 1) << kind.code;
    EXPECT_EQ(At(0, 0, 1), "Topic");
  }
}

TEST_F(GridViewTest, AFillAddsToWhatIsThereAndClearingTakesItAway) {
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task");
  Fill(32838, u"Tasks");
  Fill(32838, u"Tasks");
  EXPECT_EQ(grid_.Rows().rowCount(), 2);
  grid_.OnMessage({.code = 32837});
  EXPECT_EQ(grid_.Rows().rowCount(), 0);
}

TEST_F(GridViewTest, IsReadOnly) {
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Owner, u"Ann"}});
  Fill(32838, u"Tasks");
  const QModelIndex value = grid_.Rows().index(0, 1, grid_.Rows().index(0, 0));
  EXPECT_FALSE(grid_.Rows().flags(value).testFlag(Qt::ItemIsEditable));
}

TEST_F(GridViewTest, ValuesOfManyLinesTakeOneAndAreKeptWhole) {
  const text::Text body = u"first\r\nsecond" + text::Text(5000, u'x');
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Body, body}});
  Fill(32838, u"Tasks");
  const QModelIndex value = grid_.Rows().index(0, 1, grid_.Rows().index(0, 0));
  EXPECT_TRUE(value.data().toString().startsWith("first  second"));
  EXPECT_LT(value.data().toString().size(), 400);
  EXPECT_EQ(value.data(GridRows::kWholeValueRole).toString().toStdU16String(), body);
}

TEST_F(GridViewTest, TheDialogOverAFillBearsItsText) {
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task");
  QString title;
  QTimer::singleShot(0, &grid_, [&] {
    if (const auto* dialog = qobject_cast<controls::CUPDialog*>(QApplication::activeModalWidget()))
      title = dialog->windowTitle();
  });
  Fill(32838, u"Tasks");
  EXPECT_EQ(title, "Updating Tasks");
}

TEST_F(GridViewTest, CancelKeepsWhatIsThere) {
  const auto folder = AddFolder(u"Tasks", u"IPF.Task");
  for (int i = 0; i < 3000; ++i) AddItem(folder, u"IPM.Task");
  QTimer::singleShot(0, &grid_, [] {
    if (auto* dialog = QApplication::activeModalWidget()) QTest::keyClick(dialog, Qt::Key_Escape);
  });
  Fill(32838, u"Tasks");
  EXPECT_LT(grid_.Rows().rowCount(), 3000);
}

}  // namespace
}  // namespace velmora::workflow
