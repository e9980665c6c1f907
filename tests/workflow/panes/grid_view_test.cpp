#include "workflow/panes/grid_view.h"

#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "controls/up_dialog.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/listed_samples.h"
#include "workflow/panes/one_folder_session.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/panes/whole_value.h"
#include "workflow/qt_text.h"

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

  QTreeView& View() { return *grid_.findChild<QTreeView*>("1111"); }
  QModelIndex CellOf(int category, int row, int column) const {
    return grid_.Rows().index(row, column, grid_.Rows().index(category, 0));
  }
  QString CopyOf(const QModelIndex& cell) {
    View().setCurrentIndex(cell);
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&View(), Qt::Key_C, Qt::ControlModifier);
    return QGuiApplication::clipboard()->text();
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

TEST_F(GridViewTest, ValuesShow300CharactersInOneLineAndAreCopiedAsTheyAre) {
  const QString body = "first\r\nsecond " + QString(5000, u'x');
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Subject, FromQt(body)}, {Field::Body, FromQt(body)}});
  Fill(32838, u"Tasks");
  const QString shown = "first  second " + QString(286, u'x') + QChar(0x2026);
  for (const QModelIndex& cell : {CellOf(0, 0, 1), grid_.Rows().index(0, 0)}) {
    EXPECT_EQ(cell.data().toString(), shown);
    EXPECT_EQ(CopyOf(cell), body);
  }
  EXPECT_EQ(CopyOf(CellOf(0, 0, 0)), body) << "the label is no reason to copy the label";
}

TEST_F(GridViewTest, AtMost32767CharactersAreCopied) {
  const QString body = QString(32766, u'x') + "yz";
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Subject, FromQt(body)}, {Field::Body, FromQt(body)}});
  Fill(32838, u"Tasks");
  EXPECT_EQ(CopyOf(CellOf(0, 0, 1)), body.left(32767));
  EXPECT_EQ(CopyOf(grid_.Rows().index(0, 0)), body.left(32767));
}

TEST_F(GridViewTest, EveryLabelOfEveryKindIsShownWhole) {
  View().resize(900, 500);
  for (const KindCase& kind : kKindCases) {
    AddItem(AddFolder(kind.folderClass, kind.folderClass), kind.messageClass, SamplesOf(kind));
    grid_.OnMessage({.code = 32837});
    Fill(kind.message, kind.folderClass);
    for (int row = 0; row < int(kind.listed.size()); ++row) {
      const QModelIndex label = CellOf(0, row, 0);
      EXPECT_GE(View().visualRect(label).width(), View().sizeHintForIndex(label).width()) << kind.listed[row].label;
    }
    EXPECT_LT(View().columnWidth(0), 450) << "half of the pane is for the values";
  }
}

TEST_F(GridViewTest, OneRowIsSelectedAtATime) {
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Owner, u"Ann"}, {Field::Mileage, u"3"}});
  Fill(32838, u"Tasks");
  grid_.resize(900, 500);
  grid_.show();
  const auto click = [&](const QModelIndex& cell, Qt::KeyboardModifiers held) {
    QTest::mouseClick(View().viewport(), Qt::LeftButton, held, View().visualRect(cell).center());
  };
  for (const Qt::KeyboardModifier held : {Qt::ControlModifier, Qt::ShiftModifier}) {
    click(CellOf(0, 0, 1), {});
    click(CellOf(0, 1, 1), held);
    ASSERT_EQ(View().selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(View().selectionModel()->selectedRows()[0].row(), 1);
  }
}

TEST_F(GridViewTest, ItsItemsAreOpen) {
  AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task", {{Field::Owner, u"Ann"}});
  Fill(32838, u"Tasks");
  Fill(32838, u"Tasks");
  for (const int item : {0, 1}) EXPECT_TRUE(View().isExpanded(grid_.Rows().index(item, 0)));
}

TEST_F(GridViewTest, AFillTellsItsDialogHowFarItIs) {
  const auto folder = AddFolder(u"Tasks", u"IPF.Task");
  for (int i = 0; i < 8; ++i) AddItem(folder, u"IPM.Task");
  QStringList told;
  const auto read = [&] {
    const auto* dialog = qobject_cast<controls::CUPDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    told << QString("%1 %2 of %3 %4")
                .arg(dialog->findChild<QLabel*>("1026")->text())
                .arg(dialog->findChild<QProgressBar*>("1018")->value())
                .arg(dialog->findChild<QProgressBar*>("1018")->maximum())
                .arg(dialog->findChild<QLabel*>("1061")->text());
  };
  output::Ref<output::RDOSession> session;
  auto store = std::make_shared<FinishedStore>(session, [&](text::TextView) {
    // In the thread that fills, after each item.
    const auto onNext = [&] { QMetaObject::invokeMethod(&grid_, read, Qt::BlockingQueuedConnection); };
    return std::make_shared<OneFolderSession>(folder, OneFolderSession::Hooks{.onNext = onNext});
  });
  CGridView(nullptr, store).OnMessage({.code = 32838, .text = u"any"});
  EXPECT_EQ(told, QStringList({"Loading... 0 of 100 0%", "Loading... 12 of 100 12%", "Loading... 25 of 100 25%",
                               "Loading... 37 of 100 37%", "Loading... 50 of 100 50%", "Loading... 62 of 100 62%",
                               "Loading... 75 of 100 75%", "Loading... 87 of 100 87%"}));
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
