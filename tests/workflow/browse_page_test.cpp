#include <QLineEdit>
#include <QListView>

#include "platform/path_text.h"
#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class BrowsePageTest : public WizardTest {
 protected:
  void SetUp() override {
    Start();
    Press(kBrowseStartId);
    ASSERT_TRUE(IsPage<CSelectPstDlg>());
  }

  /// Types a name in the file dialog.
  void Browse(const std::filesystem::path& file) {
    PickInDialog(PathToQt(file));
    Press(kBrowseId);
  }

  bool CanGoOn() { return Control<QWidget>(kNextId).isEnabled(); }
  QString Shown() { return Control<QLineEdit>(kSourceEditId).text(); }
};

TEST_F(BrowsePageTest, AFileThatIsPickedBecomesTheSource) {
  EXPECT_FALSE(CanGoOn());
  const auto file = machine_.Write("Mail.Old.OST");
  Browse(file);
  EXPECT_EQ(Shown(), PathToQt(file));
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(file)));
  EXPECT_EQ(State().sourceFileName, u"Mail.Old.OST");
  EXPECT_TRUE(CanGoOn());
  Press(kNextId);
  EXPECT_TRUE(IsPage<CCustom2Dlg>());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CSelectPstDlg>());
}

TEST_F(BrowsePageTest, TheDialogBeginsWhereTheChoiceLiesOrTheLastOne) {
  const auto first = machine_.Write("one/mail.ost"), second = machine_.Write("two/mail.ost");
  QStringList began;
  const auto look = [&] {
    InDialog<QFileDialog>([&](QFileDialog& dialog) {
      began << dialog.directory().absolutePath();
      dialog.reject();
    });
    Press(kBrowseId);
  };
  Browse(first);
  look();
  Browse(second);
  look();
  Press(kBackId);
  Press(kBrowseStartId);
  ASSERT_EQ(Shown(), "") << "the page is made anew";
  look();
  // Found by a search, say: a folder in which no dialog was before.
  const auto third = machine_.Write("three/mail.ost");
  State().sourcePath = FromQt(PathToQt(third));
  look();
  EXPECT_EQ(began, QStringList({PathToQt(first.parent_path()), PathToQt(second.parent_path()),
                                PathToQt(second.parent_path()), PathToQt(third.parent_path())}));
}

TEST_F(BrowsePageTest, ATypedPstPasses) {
  Browse(machine_.Write("mail.pst"));
  EXPECT_TRUE(CanGoOn());
}

TEST_F(BrowsePageTest, AnotherExtensionIsTakenButLeadsNowhere) {
  const auto file = machine_.Write("mail.txt");
  Browse(file);
  EXPECT_EQ(Shown(), PathToQt(file));
  EXPECT_EQ(State().sourceFileName, u"mail.txt");
  EXPECT_FALSE(CanGoOn());
}

TEST_F(BrowsePageTest, ANameWithoutAFileIsRefusedByTheDialog) {
  Browse(machine_.folder.Path() / "missing.ost");
  EXPECT_EQ(Shown(), "");
  EXPECT_TRUE(State().sourcePath.empty());
  EXPECT_FALSE(CanGoOn());
}

TEST_F(BrowsePageTest, AFolderIsNotPicked) {
  std::filesystem::create_directory(machine_.folder.Path() / "folder.ost");
  Browse(machine_.folder.Path() / "folder.ost");
  EXPECT_EQ(Shown(), "");
  EXPECT_FALSE(CanGoOn());
}

TEST_F(BrowsePageTest, TheFileDialogOffersOstFiles) {
  InDialog<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Velmora Convert OST to PST");
    EXPECT_EQ(dialog.nameFilters(), QStringList("OST files (*.ost)"));
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(dialog.defaultSuffix(), "Select a .ost file") << "the prompt stands in for the extension";
    dialog.reject();
  });
  Press(kBrowseId);
  EXPECT_FALSE(CanGoOn());
}

TEST_F(BrowsePageTest, TheFilterTakesAnyLetterCase) {
  machine_.Write("mail/MAIL.OST");
  machine_.Write("mail/mail.txt");
  QStringList offered;
  InDialog<QFileDialog>([&](QFileDialog& dialog) {
    dialog.setDirectory(PathToQt(machine_.folder.Path() / "mail"));
    auto* list = dialog.findChild<QListView*>("listView");
    const auto rows = [&] { return list->model()->rowCount(list->rootIndex()); };
    EXPECT_TRUE(Comes([&] { return rows() > 0; }));
    for (int row = 0; row < rows(); ++row) offered << list->model()->index(row, 0, list->rootIndex()).data().toString();
    dialog.reject();
  });
  Press(kBrowseId);
  EXPECT_EQ(offered, QStringList("MAIL.OST"));
}

TEST_F(BrowsePageTest, TheFieldCannotBeTypedInto) {
  Control<QLineEdit>(kSourceEditId).setFocus();
  QTest::keyClicks(&Control<QWidget>(kSourceEditId), "/mail.ost");
  EXPECT_EQ(Shown(), "");
}

TEST_F(BrowsePageTest, NextTakesTheSourceAsItWasPickedAndDoesNotLookAgain) {
  const auto file = machine_.Write("mail.ost");
  Browse(file);
  std::filesystem::remove(file);
  Press(kNextId);
  EXPECT_TRUE(IsPage<CCustom2Dlg>());
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(file)));
}

TEST_F(BrowsePageTest, CancellingTheDialogKeepsWhatWasPicked) {
  const auto file = machine_.Write("mail.ost");
  Browse(file);
  InDialog<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
  Press(kBrowseId);
  EXPECT_EQ(Shown(), PathToQt(file));
  EXPECT_TRUE(CanGoOn());
}

TEST_F(BrowsePageTest, IsMadeAnewOnEachVisitThoughTheSourceStays) {
  Browse(machine_.Write("mail.ost"));
  const text::Text source = State().sourcePath;
  Press(kMainId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  Press(kBrowseStartId);
  EXPECT_EQ(Shown(), "");
  EXPECT_FALSE(CanGoOn());
  EXPECT_EQ(State().sourcePath, source);
}

TEST_F(BrowsePageTest, APathOfManyScriptsArrivesUnchanged) {
  const auto file = machine_.Write("почта 郵便.ost");
  Browse(file);
  EXPECT_EQ(platform::PathOf(State().sourcePath), file);
  EXPECT_TRUE(CanGoOn());
}

TEST_F(BrowsePageTest, TheCloseBoxAsks) {
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: Do you want to exit the application?"));
  EXPECT_TRUE(IsPage<CSelectPstDlg>());
}

}  // namespace
}  // namespace velmora::workflow
