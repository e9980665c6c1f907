#include "workflow/panes/result_panes.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <fstream>
#include <iterator>

#include "forge/demo_store.h"
#include "forge/mailbox.h"
#include "platform/path_text.h"
#include "workflow/panes/forged_kinds.h"
#include "workflow/panes/grid_rows.h"
#include "workflow/panes/open_files.h"
#include "workflow/panes/result_fixture.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

class ResultPanesTest : public ResultFixture {
 protected:
  std::filesystem::path Demo() {
    const std::filesystem::path path = folder_.Path() / "demo.ost";
    forge::ForgeDemoStore(forge::DemoState::kSound).Save(path);
    return path;
  }
  QString Body() { return panes_.BodyPane().toPlainText(); }
};

TEST_F(ResultPanesTest, FoldersAndBodyAreHiddenUntilTheFirstRun) {
  panes_.show();
  EXPECT_FALSE(panes_.FolderPane().isVisible());
  EXPECT_FALSE(panes_.BodyPane().isVisible());
  EXPECT_FALSE(panes_.ListPane().HasColumns());
  panes_.BeginRun();
  EXPECT_TRUE(panes_.FolderPane().isVisible());
  EXPECT_TRUE(panes_.BodyPane().isVisible());
  EXPECT_TRUE(panes_.ListPane().HasColumns());
}

TEST_F(ResultPanesTest, StandInTwoSplittersAsTheFrameLaysThemOut) {
  EXPECT_EQ(panes_.orientation(), Qt::Horizontal);
  EXPECT_EQ(panes_.widget(0), &panes_.FolderPane());
  const auto* inner = qobject_cast<QSplitter*>(panes_.widget(1));
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->orientation(), Qt::Vertical);
  EXPECT_EQ(inner->widget(1), &panes_.BodyPane());
}

TEST_F(ResultPanesTest, TheListIsSwappedForTheGridAndBack) {
  EXPECT_FALSE(panes_.ShowsGrid());
  panes_.OnMessage({.code = 32786, .number = 0});
  EXPECT_TRUE(panes_.ShowsGrid());
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_FALSE(panes_.ShowsGrid());
}

TEST_F(ResultPanesTest, APaneThatComesBackIsEmpty) {
  panes_.BeginRun();
  panes_.OnMessage({.code = 32832, .number = 1, .text = u"Ann"});
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_EQ(panes_.ListPane().RowCount(), 1) << "the list is there already";
  panes_.OnMessage({.code = 32786, .number = 0});
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_EQ(panes_.ListPane().RowCount(), 0);
  EXPECT_TRUE(panes_.ListPane().HasColumns());
}

TEST_F(ResultPanesTest, TheListThatComesBackHasItsColumns) {
  panes_.OnMessage({.code = 32786, .number = 0});
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_TRUE(panes_.ListPane().HasColumns());
}

TEST_F(ResultPanesTest, ARunFillsTheTreeAndStreamsItsMails) {
  int rows = 0;
  QObject::connect(panes_.ListPane().model(), &QAbstractItemModel::rowsInserted,
                   [&](const QModelIndex&, int first, int last) { rows += last - first + 1; });
  Run(Demo());
  EXPECT_GT(rows, 5);
  EXPECT_EQ(panes_.ListPane().RowCount(), 0) << "the end of a run clears the list";
  EXPECT_EQ(Tree().topLevelItem(0)->text(0), "demo Converted");
  EXPECT_GE(panes_.FolderPane().Folders().Records().size(), std::size_t(forge::kDemoFolders));
}

TEST_F(ResultPanesTest, EveryFolderOfTheNewStoreShowsWhatWasWritten) {
  Run(Demo());
  EXPECT_GT(ExpectAllFoldersShown(), 50);
}

TEST_F(ResultPanesTest, EveryFieldOfEveryKindComesBackFromTheNewStore) {
  const std::filesystem::path path = folder_.Path() / "kinds.ost";
  ForgeEveryKind().Save(path);
  Run(path);
  for (const ForgedKind& kind : ForgedKinds()) {
    SCOPED_TRACE(text::ToUtf8(kind.folder));
    const TreeFolderRecord* folder = Folder(kind.folder);
    ASSERT_NE(folder, nullptr);
    ExpectShown(*folder);
    const GridRows& grid = panes_.Grid().Rows();
    ASSERT_EQ(grid.rowCount(), 1);
    std::vector<std::string> labels;
    const QModelIndex item = grid.index(0, 0);
    for (int row = 0; row < grid.rowCount(item); ++row)
      labels.push_back(grid.index(row, 0, item).data().toString().toStdString());
    EXPECT_EQ(labels, kind.labels) << "all that the source has a record for";
  }
}

TEST_F(ResultPanesTest, ABodyIsShownFromTheNewStore) {
  Run(Demo());
  for (const TreeFolderRecord& folder : panes_.FolderPane().Folders().Records()) {
    if (FillKindOfClass(folder.containerClass) != nullptr) continue;
    Select(folder);
    const std::vector<WrittenItem> items = Written(ToQt(PathOf(folder)));
    for (int row = 0; row < panes_.ListPane().RowCount(); ++row) {
      panes_.ListPane().selectRow(row);
      panes_.OnMessage({.code = 32848, .text = PathOf(folder)});
      const auto& fields = items[std::size_t(row)].fields;
      const bool hasBody =
          fields.contains("HTMLBody") || (fields.contains("Body") && !fields.at("Body").toString().isEmpty());
      EXPECT_EQ(!Body().isEmpty(), hasBody) << row;
    }
  }
}

TEST_F(ResultPanesTest, ClicksAndKeysInTheListShowBodies) {
  Run(Demo());
  panes_.resize(1000, 700);
  panes_.show();
  Select(*Folder(u"Inbox"));
  CListViewRight& list = panes_.ListPane();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(0, 2)).center());
  const QString first = Body();
  EXPECT_FALSE(first.isEmpty());
  QTest::keyClick(&list, Qt::Key_Down);
  const QString second = Body();
  EXPECT_NE(second, first);
  EXPECT_EQ(list.SelectedRow(), 1);
  QTest::keyClick(&list, Qt::Key_Up);
  EXPECT_EQ(Body(), first);
  Select(*Folder(u"Sent Items"));
  EXPECT_EQ(Body(), "") << "another folder begins without a body";
}

TEST_F(ResultPanesTest, ASecondRunShowsItsOwnStore) {
  Run(Demo());
  Select(*Folder(u"Inbox"));
  panes_.OnMessage({.code = 32848, .text = PathOf(*Folder(u"Inbox"))});
  const std::filesystem::path path = folder_.Path() / "other.pst";
  forge::Mailbox box;
  const forge::Nid inbox = box.AddFolder({.name = u"Inbox"});
  box.AddMessage(inbox, {.subject = u"Only one", .plain = u"The other body"});
  for (int i = 0; i < 60; ++i) box.AddMessage(inbox, {.subject = u"Filling"});
  box.Finish().Save(path);
  Run(path);
  EXPECT_EQ(Tree().topLevelItem(0)->text(0), "other Converted");
  EXPECT_EQ(panes_.ListPane().RowCount(), 0);
  EXPECT_EQ(Body(), "");
  EXPECT_GT(ExpectAllFoldersShown(), 60);
}

TEST_F(ResultPanesTest, TheStoreIsNotInUseBeforeAFolderIsSelected) {
  Run(Demo());
  EXPECT_FALSE(state_.previewSession);
  Select(*Folder(u"Inbox"));
  EXPECT_TRUE(state_.previewSession);
  panes_.BeginRun();
  EXPECT_FALSE(state_.previewSession);
}

TEST_F(ResultPanesTest, TheListHasNoScrollBarForNothing) {
  panes_.resize(1000, 680);
  panes_.show();
  panes_.BeginRun();
  EXPECT_EQ(panes_.ListPane().horizontalScrollBar()->maximum(), 0);
  for (int i = 0; i < 100; ++i) panes_.OnMessage({.code = 32832, .number = 1, .text = u"Ann"});
  QCoreApplication::processEvents();
  EXPECT_TRUE(panes_.ListPane().verticalScrollBar()->isVisible());
  EXPECT_EQ(panes_.ListPane().horizontalScrollBar()->maximum(), 0);
}

TEST_F(ResultPanesTest, TheSelectionIsRenewedInTheTree) {
  Run(Demo());
  Select(*Folder(u"Inbox"));
  QSignalSpy changes(&Tree(), &QTreeWidget::currentItemChanged);
  panes_.OnMessage({.code = 32818});
  EXPECT_EQ(changes.size(), 2);
}

class PanesOfAFinishedRunTest : public ResultPanesTest {
 protected:
  PanesOfAFinishedRunTest() {
    Run(Demo());
    Select(*Folder(u"Inbox"));
    panes_.ListPane().selectRow(0);
    ShowBody();
    EXPECT_GT(panes_.ListPane().RowCount(), 0);
  }
  void ShowBody() {
    panes_.OnMessage({.code = 32848, .text = PathOf(*Folder(u"Inbox"))});
    EXPECT_NE(Body(), "");
  }
  bool IsStoreInUse() const { return OpenFiles().contains(ToQt(state_.destinationPath)); }
  void BeginListing() {
    panes_.OnMessage({.code = 32834, .text = PathOf(*Folder(u"Inbox"))});
    EXPECT_TRUE(panes_.ListBusy());
  }
};

TEST_F(PanesOfAFinishedRunTest, AChangeToTheGridClearsListAndBody) {
  panes_.OnMessage({.code = 32786, .number = 0});
  EXPECT_EQ(panes_.ListPane().RowCount(), 0);
  EXPECT_EQ(Body(), "");
}

TEST_F(PanesOfAFinishedRunTest, AFolderOfTheGridHasNoBodyOfAnotherFolderBelowIt) {
  Select(*Folder(u"Contacts"));
  EXPECT_TRUE(panes_.ShowsGrid());
  EXPECT_EQ(Body(), "");
}

TEST_F(PanesOfAFinishedRunTest, AChangeToTheGridStopsAListing) {
  BeginListing();
  panes_.OnMessage({.code = 32786, .number = 0});
  EXPECT_FALSE(panes_.ListBusy());
  QTest::qWait(50);
  EXPECT_EQ(panes_.ListPane().RowCount(), 0) << "no row comes late";
}

TEST_F(PanesOfAFinishedRunTest, AChangeToTheListClearsTheGrid) {
  Select(*Folder(u"Contacts"));
  EXPECT_GT(panes_.Grid().Rows().rowCount(), 0);
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_EQ(panes_.Grid().Rows().rowCount(), 0);
}

TEST_F(PanesOfAFinishedRunTest, AChangeToThePaneThatIsThereChangesNothing) {
  panes_.OnMessage({.code = 32836, .text = PathOf(*Folder(u"Contacts"))});
  const int behindTheList = panes_.Grid().Rows().rowCount();
  EXPECT_GT(behindTheList, 0);
  const int rows = panes_.ListPane().RowCount();
  panes_.OnMessage({.code = 32786, .number = 1});
  EXPECT_EQ(panes_.ListPane().RowCount(), rows);
  EXPECT_EQ(panes_.Grid().Rows().rowCount(), behindTheList);
  EXPECT_NE(Body(), "");
  Select(*Folder(u"Contacts"));
  const int categories = panes_.Grid().Rows().rowCount();
  panes_.OnMessage({.code = 32786, .number = 0});
  EXPECT_EQ(panes_.Grid().Rows().rowCount(), categories);
}

TEST_F(PanesOfAFinishedRunTest, TheNextRunForgetsAllThatIsShown) {
  panes_.OnMessage({.code = 32836, .text = PathOf(*Folder(u"Contacts"))});
  EXPECT_GT(panes_.Grid().Rows().rowCount(), 0) << "behind the list";
  BeginListing();
  ShowBody();
  EXPECT_TRUE(IsStoreInUse());
  panes_.BeginRun();
  EXPECT_FALSE(panes_.ListBusy());
  EXPECT_FALSE(state_.treeFilling);
  EXPECT_EQ(Tree().topLevelItemCount(), 0);
  EXPECT_EQ(panes_.Grid().Rows().rowCount(), 0);
  EXPECT_EQ(panes_.ListPane().RowCount(), 0);
  EXPECT_EQ(Body(), "");
  EXPECT_FALSE(state_.previewSession);
  EXPECT_FALSE(IsStoreInUse());
}

TEST_F(PanesOfAFinishedRunTest, TheNextRunBeginsWithTheList) {
  Select(*Folder(u"Contacts"));
  panes_.BeginRun();
  EXPECT_FALSE(panes_.ShowsGrid());
}

TEST_F(PanesOfAFinishedRunTest, OnceThePageIsLeftTheStoreIsInUseNoLonger) {
  EXPECT_TRUE(IsStoreInUse());
  panes_.EndRun();
  EXPECT_FALSE(state_.previewSession);
  EXPECT_FALSE(IsStoreInUse());
}

class PanesDuringARunTest : public ResultPanesTest {
 protected:
  /// Asks for all that can be asked for, as somebody would who saw the panes while the run goes on.
  void OnEvent(const engine::Event& event) override {
    ResultPanesTest::OnEvent(event);
    if (!std::holds_alternative<engine::AttachmentsListed>(event)) return;
    ++asked_;
    panes_.ListPane().selectRow(0);
    panes_.OnMessage({.code = 32848, .text = u"\\\\demo Converted\\Inbox"});
    Tree().setCurrentItem(Tree().topLevelItem(0));
    EXPECT_FALSE(state_.previewSession) << "the store is not finished";
    EXPECT_EQ(Body(), "");
    EXPECT_FALSE(panes_.ListBusy());
  }
  int asked_ = 0;
};

TEST_F(PanesDuringARunTest, NothingIsReadFromAStoreThatIsBeingWritten) {
  Run(Demo());
  EXPECT_GT(asked_, 0);
  EXPECT_GT(ExpectAllFoldersShown(), 50) << "and all of it afterwards";
}

TEST_F(ResultPanesTest, AStoreThatIsGoneShowsEmptyFolders) {
  Run(Demo());
  std::filesystem::remove(platform::PathOf(state_.destinationPath));
  Select(*Folder(u"Inbox"));
  EXPECT_EQ(panes_.ListPane().RowCount(), 0);
  EXPECT_FALSE(panes_.ListBusy());
  Select(*Folder(u"Contacts"));
  EXPECT_EQ(panes_.Grid().Rows().rowCount(), 0);
}

TEST_F(ResultPanesTest, TheSummaryIsWrittenWhenTheLogIsOn) {
  outLook_.logEnabled = true;
  Run(Demo());
  const int inbox = int(Written(ToQt(PathOf(*Folder(u"Inbox")))).size());
  EXPECT_EQ(Folder(u"Inbox")->item->text(0), QString("Inbox(%1)").arg(inbox));
  std::ifstream file(platform::PathOf(state_.logPath), std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  const QString log = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.data()), qsizetype(bytes.size() / 2));
  EXPECT_TRUE(log.contains("-------------------Summary--------------------"));
  EXPECT_TRUE(log.contains(QString("\\\\demo Converted\\Inbox: %1\r\n").arg(inbox)));
}

TEST_F(ResultPanesTest, WithoutTheLogNothingIsCounted) {
  Run(Demo());
  EXPECT_EQ(Folder(u"Inbox")->item->text(0), "Inbox");
}

}  // namespace
}  // namespace velmora::workflow
