#include "workflow/panes/form_view_left.h"

#include <QGroupBox>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/path_text.h"
#include "platform/user_folders.h"
#include "workflow/panes/image_list.h"
#include "workflow/panes/one_folder_session.h"
#include "workflow/panes/store_fixture.h"
#include "workflow/panes/waiting_panels.h"

namespace velmora::workflow {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kTop = 0x8022;

class FolderTreeTest : public StoreFixture {
 protected:
  FolderTreeTest() {
    state_.convertedName = u"Test Converted";
    pane_.OnFoldersKnown({{}, kTop});
  }

  void Recover(const std::vector<engine::FolderRecord>& folders) { pane_.OnFoldersKnown({folders, kTop}); }
  void Add(std::uint32_t id, text::TextView name = {}) {
    pane_.OnMessage({.code = 32816, .number = id, .text = text::Text(name)});
  }
  QTreeWidget& Tree() { return *pane_.findChild<QTreeWidget*>("1002"); }
  QTreeWidgetItem& Root() { return *Tree().topLevelItem(0); }

  static QStringList Names(const QTreeWidgetItem& item) {
    QStringList names;
    for (int i = 0; i < item.childCount(); ++i) names << item.child(i)->text(0);
    return names;
  }
  text::Text Path(std::uint32_t id) const { return PathOf(*pane_.Folders().OfId(id)); }
  using StoreFixture::PathOf;
  static text::Text PathOf(const TreeFolderRecord& folder) { return workflow::PathOf(folder); }
  static QImage PictureOf(const QIcon& icon) { return icon.pixmap(16, 16).toImage(); }
  bool HasIcon(const QTreeWidgetItem& item, std::size_t index) const {
    return PictureOf(item.icon(0)) == PictureOf(LoadImageList(141)[index]);
  }

  conversion::RunState state_;
  std::vector<RunMessage> sent_;
  bool listBusy_ = false;
  CFormViewLeft pane_{nullptr,
                      {state_, finished_, [this](const RunMessage& message) { sent_.push_back(message); },
                       [this] { return listBusy_; }}};
};

TEST_F(FolderTreeTest, ABoxHoldsTheTree) {
  auto* box = pane_.findChild<QGroupBox*>("1001");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->title(), "Folder list");
  EXPECT_EQ(Tree().parent(), box);
}

TEST_F(FolderTreeTest, ASearchPanelIsThereAndNobodySeesIt) {
  pane_.show();
  EXPECT_FALSE(pane_.findChild<CFindDlg*>()->isVisible());
}

TEST_F(FolderTreeTest, AFolderComesWithTheWholeChainOfItsAncestors) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"},
           {0x80A2, 0x8082, u"Old", u"IPF.Note"},
           {0x80C2, 0x80A2, u"Older", u"IPF.Note"}});
  Add(0x80C2);
  ASSERT_EQ(Tree().topLevelItemCount(), 1);
  EXPECT_EQ(Root().text(0), "Test Converted");
  EXPECT_EQ(Names(Root()), QStringList({"Inbox"}));
  EXPECT_EQ(Names(*Root().child(0)), QStringList({"Old"}));
  EXPECT_EQ(Names(*Root().child(0)->child(0)), QStringList({"Older"}));
  EXPECT_TRUE(Root().isExpanded());
  EXPECT_TRUE(Root().child(0)->isExpanded());
}

TEST_F(FolderTreeTest, EachFolderOnTheWayToANewOneIsOpened) {
  Recover({{0x8082, kTop, u"A", u"IPF.Note"},
           {0x80A2, 0x8082, u"B", u"IPF.Note"},
           {0x80C2, 0x80A2, u"C", u"IPF.Note"},
           {0x80E2, 0x80C2, u"D", u"IPF.Note"}});
  Add(0x80C2);
  for (const std::uint32_t added : {0x80E2, 0x80E2}) {  // new, and found
    Tree().collapseAll();
    Add(added);
    QTreeWidgetItem* item = &Root();
    for (int level = 0; level < 4; ++level, item = item->child(0)) EXPECT_TRUE(item->isExpanded()) << level;
    EXPECT_EQ(item->text(0), "D");
  }
}

TEST_F(FolderTreeTest, OneFolderIsSelectedAtATime) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}, {0x80A2, kTop, u"Drafts", u"IPF.Note"}});
  Add(0x8082);
  Add(0x80A2);
  pane_.resize(300, 300);
  pane_.show();
  const auto click = [this](int child, Qt::KeyboardModifiers held) {
    QTest::mouseClick(Tree().viewport(), Qt::LeftButton, held, Tree().visualItemRect(Root().child(child)).center());
  };
  for (const Qt::KeyboardModifier held : {Qt::ControlModifier, Qt::ShiftModifier}) {
    click(0, {});
    click(1, held);
    EXPECT_EQ(Tree().selectedItems(), QList<QTreeWidgetItem*>({Root().child(1)}));
  }
}

TEST_F(FolderTreeTest, TwoFoldersWithTheSameIdAreOneRecord) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}});
  Add(0x8082);
  Add(0x8082);
  EXPECT_EQ(Names(Root()), QStringList({"Inbox"}));
  EXPECT_EQ(pane_.Folders().Records().size(), 2u) << "the root and the folder";
}

TEST_F(FolderTreeTest, AFolderWhoseParentIsNotKnownHangsUnderTheRoot) {
  Recover({{0x80A2, 0xDEAD2, u"Lost", u"IPF.Note"}});
  Add(0x80A2);
  EXPECT_EQ(Names(Root()), QStringList({"Lost"}));
  EXPECT_EQ(Path(0x80A2), u"\\\\Test Converted\\Lost");
}

TEST_F(FolderTreeTest, TheRootOfTheSourceEndsAChain) {
  Recover({{0x80A2, 290, u"Beside the top", u"IPF.Note"}, {290, 0x80A2, u"Root", u"IPF.Note"}});
  Add(0x80A2);
  EXPECT_EQ(Names(Root()), QStringList({"Beside the top"}));
}

TEST_F(FolderTreeTest, TheTopFolderIsTheRootWhereverItStands) {
  Recover({{kTop, 0x8000, u"Top of Personal Folders", u"IPF.Note"}, {0x8082, kTop, u"Inbox", u"IPF.Note"}});
  Add(0x8082);
  Add(kTop);
  EXPECT_EQ(Names(Root()), QStringList({"Inbox"}));
}

TEST_F(FolderTreeTest, AChainThatComesBackOnItselfEndsThere) {
  Recover({{0x8082, 0x80A2, u"Egg", u"IPF.Note"}, {0x80A2, 0x8082, u"Hen", u"IPF.Note"}});
  Add(0x8082);
  EXPECT_EQ(Path(0x8082), u"\\\\Test Converted\\Hen\\Egg");
}

TEST_F(FolderTreeTest, FoldersOfOneNameStandBesideEachOther) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}, {0x80A2, kTop, u"Inbox", u"IPF.Note"}});
  Add(0x8082);
  Add(0x80A2);
  EXPECT_EQ(Names(Root()), QStringList({"Inbox", "Inbox"}));
}

TEST_F(FolderTreeTest, BesideAFolderNamedLikeTheStoreNothingNewIsInserted) {
  Recover({{0x8082, kTop, u"Test Converted", u"IPF.Note"},
           {0x80A2, kTop, u"Inbox", u"IPF.Note"},
           {0x80C2, 0x8082, u"Below", u"IPF.Note"}});
  Add(0x8082);
  Add(0x80A2);
  EXPECT_EQ(Names(Root()), QStringList({"Test Converted"}));
  Add(0x80C2);
  EXPECT_EQ(Names(*Root().child(0)), QStringList({"Below"})) << "what hangs under it is inserted";
}

TEST_F(FolderTreeTest, FoldersHaveIconsByTheirNames) {
  const char16_t* names[] = {u"Other",    u"Inbox", u"Deleted Items", u"Drafts",  u"Contacts",
                             u"Calendar", u"Notes", u"Tasks",         u"Journals"};
  std::vector<engine::FolderRecord> folders;
  std::uint32_t id = 0x8082;
  for (const char16_t* name : names) folders.push_back({id += 0x20, kTop, name, u"IPF.Note"});
  Recover(folders);
  for (const auto& folder : folders) Add(folder.nid);
  EXPECT_TRUE(HasIcon(Root(), 0));
  for (std::size_t i = 0; i < std::size(names); ++i) EXPECT_TRUE(HasIcon(*Root().child(int(i)), i)) << i;
}

TEST_F(FolderTreeTest, IconNamesCountLetterForLetter) {
  Recover({{0x8082, kTop, u"inbox", u"IPF.Note"}, {0x80A2, kTop, u"Journal", u"IPF.Journal"}});
  Add(0x8082);
  Add(0x80A2);
  EXPECT_TRUE(HasIcon(*Root().child(0), 0));
  EXPECT_TRUE(HasIcon(*Root().child(1), 0));
}

TEST_F(FolderTreeTest, TheMarkersBecomeChildrenOfTheRootOnce) {
  Add(4386, u"Orphaned Mails");
  Add(4369, u"Lost & Found");
  Add(4386, u"Orphaned Mails");
  Add(4369, u"Lost & Found");
  EXPECT_EQ(Names(Root()), QStringList({"Orphaned Mails", "Lost & Found"}));
  EXPECT_TRUE(HasIcon(*Root().child(0), 0));
  EXPECT_TRUE(HasIcon(*Root().child(1), 9));
  EXPECT_EQ(Path(4369), u"\\\\Test Converted\\Lost & Found");
}

TEST_F(FolderTreeTest, ANewRunBeginsWithAnEmptyTree) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}});
  Add(0x8082);
  Add(4386, u"Orphaned Mails");
  pane_.Clear();
  EXPECT_EQ(Tree().topLevelItemCount(), 0);
  state_.convertedName = u"Other Converted";
  Recover({});
  Add(4386, u"Orphaned Mails");
  EXPECT_EQ(Root().text(0), "Other Converted");
  EXPECT_EQ(Names(Root()), QStringList({"Orphaned Mails"}));
}

TEST_F(FolderTreeTest, ARunThatGoesOnBehindAnotherFillsTheEmptyTree) {
  Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}, {0x80A2, kTop, u"Drafts", u"IPF.Note"}});
  Add(0x8082);
  pane_.Clear();  // a second run was asked for, and waits for the end of this one
  Add(0x80A2);
  EXPECT_EQ(Names(Root()), QStringList({"Drafts"}));
}

TEST_F(FolderTreeTest, AChainOfAnyLengthIsTaken) {
  std::vector<engine::FolderRecord> folders;
  constexpr std::uint32_t kDepth = 20000;
  const auto idAt = [](std::uint32_t level) { return 0x100002 + (level << 5); };
  for (std::uint32_t i = 1; i <= kDepth; ++i) folders.push_back({idAt(i), idAt(i - 1), u"f", u"IPF.Note"});
  Recover(folders);
  pane_.show();
  for (const auto& folder : folders) Add(folder.nid);
  EXPECT_EQ(Path(idAt(kDepth)).size(), std::size("\\\\Test Converted") - 1 + 2 * kDepth);
  pane_.grab();
}

TEST_F(FolderTreeTest, FoldersDeeperThan200LevelsStandSideBySide) {
  std::vector<engine::FolderRecord> folders;
  for (std::uint32_t i = 1; i <= 203; ++i) folders.push_back({0x8022 + i * 32, 0x8002 + i * 32, u"f", u"IPF.Note"});
  Recover(folders);
  Add(folders.back().nid);
  int level = 0;
  QTreeWidgetItem* item = &Root();
  for (; item->childCount() == 1; item = item->child(0)) ++level;
  EXPECT_EQ(level, 199);
  EXPECT_EQ(item->childCount(), 4) << "the folders of levels 200 to 203";
  for (int i = 0; i < item->childCount(); ++i) {
    EXPECT_EQ(item->child(i)->childCount(), 0);
    EXPECT_EQ(pane_.Folders().OfItem(item->child(i)), pane_.Folders().OfId(folders[std::size_t(199 + i)].nid));
  }
  EXPECT_EQ(Path(folders.back().nid).size(), std::size("\\\\Test Converted") - 1 + 2 * folders.size());
}

class FolderSelectionTest : public FolderTreeTest {
 protected:
  FolderSelectionTest() {
    Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}, {0x80A2, kTop, u"Tasks", u"IPF.Task"}});
    Add(0x8082);
    Add(0x80A2);
    state_.treeFilling = true;
  }
  void Select(int child) { Tree().setCurrentItem(Root().child(child)); }
};

TEST_F(FolderSelectionTest, AFolderOfMailsIsShownByTheList) {
  Select(0);
  EXPECT_THAT(sent_, ElementsAre(RunMessage{.code = 32786, .number = 1}, RunMessage{.code = 32833},
                                 RunMessage{.code = 32834, .text = PathOf(u"Inbox")}));
}

TEST_F(FolderSelectionTest, AFolderOfTasksIsShownByTheGrid) {
  Select(1);
  EXPECT_THAT(sent_, ElementsAre(RunMessage{.code = 32786, .number = 0}, RunMessage{.code = 32837},
                                 RunMessage{.code = 32838, .text = PathOf(u"Tasks")}));
}

TEST_F(FolderSelectionTest, TheRootIsShownByTheList) {
  Tree().setCurrentItem(&Root());
  ASSERT_EQ(sent_.size(), 3u);
  EXPECT_EQ(sent_[2], (RunMessage{.code = 32834, .text = u"\\\\Test Converted"}));
}

TEST_F(FolderSelectionTest, NothingIsShownDuringARun) {
  state_.treeFilling = false;
  Select(0);
  EXPECT_THAT(sent_, IsEmpty());
}

TEST_F(FolderSelectionTest, NothingIsShownWhileTheListIsBusy) {
  listBusy_ = true;
  Select(0);
  EXPECT_THAT(sent_, IsEmpty());
}

TEST_F(FolderSelectionTest, RenewingTheSelectionSelectsTheFolderAnewAndShowsNothing) {
  Select(0);
  for (const bool filling : {true, false}) {
    state_.treeFilling = filling;
    sent_.clear();
    QSignalSpy changes(&Tree(), &QTreeWidget::currentItemChanged);
    pane_.OnMessage({.code = 32818});
    EXPECT_EQ(changes.size(), 2) << "to no folder and back";
    EXPECT_EQ(Tree().currentItem(), Root().child(0));
    EXPECT_EQ(Tree().selectedItems(), QList<QTreeWidgetItem*>({Root().child(0)}));
    EXPECT_THAT(sent_, IsEmpty());
    EXPECT_EQ(state_.treeFilling, filling);
  }
}

class FolderCountTest : public FolderTreeTest {
 protected:
  FolderCountTest() {
    const auto inbox = AddFolder(u"Inbox", u"IPF.Note");
    for (int i = 0; i < 3; ++i) AddItem(inbox, u"IPM.Note");
    AddItem(AddFolder(u"Tasks", u"IPF.Task"), u"IPM.Task");
    AddItem(AddFolder(u"Orphaned Mails", u"IPF.Note"), u"IPM.Note");
    Recover({{0x8082, kTop, u"Inbox", u"IPF.Note"}, {0x80A2, kTop, u"Tasks", u"IPF.Task"}});
    Add(0x8082);
    Add(0x80A2);
    Add(4386, u"Orphaned Mails");
    std::ofstream(log_).close();
    state_.logPath = platform::TextOfPath(log_);
  }

  /// What stands in the log.
  QString Written() const {
    std::ifstream file(log_, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.data()), qsizetype(bytes.size() / 2));
  }

  platform::TemporaryFolder logFolder_ = platform::TemporaryFolder::Create().value();
  std::filesystem::path log_ = logFolder_.Path() / "LogInformation.log";
};

TEST_F(FolderCountTest, AFolderThatTheStoreDoesNotHaveKeepsItsName) {
  Recover({{0x80C2, kTop, u"Gone", u"IPF.Note"}});
  Add(0x80C2);
  pane_.WriteSummary(*session_);
  EXPECT_EQ(Names(Root()), QStringList({"Inbox(3)", "Tasks(1)", "Orphaned Mails(1)", "Gone"}));
}

TEST_F(FolderCountTest, ARunOutlivesASummaryThatFails) {
  const std::function<void()> failures[] = {[] { throw output::OutputFailure(output::ResultCode::STG_E_READFAULT); },
                                            [] { throw std::bad_alloc(); }};
  for (const auto& failure : failures) {
    OneFolderSession session(nullptr, {.onOpen = failure});
    EXPECT_NO_THROW(pane_.WriteSummary(session));
    EXPECT_EQ(Names(Root()), QStringList({"Inbox", "Tasks", "Orphaned Mails"}));
  }
}

TEST_F(FolderCountTest, TheSummaryCountsEveryFolderAndGoesToTheLog) {
  pane_.WriteSummary(*session_);
  EXPECT_EQ(Names(Root()), QStringList({"Inbox(3)", "Tasks(1)", "Orphaned Mails(1)"}));
  EXPECT_EQ(Root().text(0), "Test Converted") << "the root hangs under nothing";

  const QString written = Written();
  EXPECT_TRUE(
      written.startsWith("\r\n\r\n-------------------Summary--------------------"
                         "\r\n\r\n\\\\Test Converted\\Inbox: 3\r\n\r\n\\\\Test Converted\\Tasks: 1"
                         "\r\n\r\n\\\\Test Converted\\Orphaned Mails: 1"
                         "\r\n\r\nTotal recovered mail items : 5\r\n\r\nDate and time : "))
      << written.toStdString();
}

}  // namespace
}  // namespace velmora::workflow
