#include <QComboBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <fstream>

#include "controls/file_rows.h"
#include "controls/picture_button.h"
#include "controls/tx_list_ctrl.h"
#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using controls::CTXListCtrl;

constexpr const char* kBackBox =
    "Information: An operation is in progress;\nPlease cancel the current\nProcess to go back to the main screen.";
constexpr const char* kCloseBox =
    "Information: An operation is in progress;\nPlease cancel the current\nProcess to close this wizard.";
constexpr const char* kDriveBox =
    "Velmora Convert OST to PST: This is removable drive.Please select any non removable drive.";

class FindPageTest : public WizardTest {
 protected:
  void Open() {
    Start();
    Press(kSearchStartId);
    ASSERT_TRUE(IsPage<CFindPstDlg>());
  }

  std::filesystem::path Drive() const { return machine_.folder.Path() / "drive"; }
  QComboBox& Combo() { return Control<QComboBox>(kDriveComboId); }
  CTXListCtrl& List() { return Control<CTXListCtrl>(kFileListId); }
  QString Caption() { return Control<QAbstractButton>(kFindId).text(); }
  bool CanGoOn() { return Control<QWidget>(kNextId).isEnabled(); }

  QStringList Rows() {
    QStringList rows;
    for (int row = 0; row < List().Rows().Count(); ++row) rows << List().Rows().TextAt(row);
    return rows;
  }

  /// Searches and waits for the end.
  void Search() {
    Press(kFindId);
    EXPECT_TRUE(Comes([this] { return Combo().isEnabled() && Caption() == "Fin&d"; }));
  }

  void ClickRow(int row) {
    const QRect place = List().visualRect(List().model()->index(row, 0));
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, place.center());
    Settle();
  }

  /// A drive whose search takes some time; made once for all tests.
  static const std::filesystem::path& LargeDrive() {
    static const platform::TemporaryFolder folder = [] {
      platform::TemporaryFolder made = platform::TemporaryFolder::Create().value();
      for (int i = 0; i < 3000; ++i) {
        std::filesystem::create_directories(made.Path() / std::to_string(i % 30) / std::to_string(i));
      }
      std::ofstream(made.Path() / "mail.ost") << "x";
      return made;
    }();
    return folder.Path();
  }
  void OpenLargeDrive() {
    machine_.volumes = {{LargeDrive(), false}};
    Open();
  }
};

TEST_F(FindPageTest, ListsTheDrivesSortedWithoutRemovableOnes) {
  machine_.volumes = {{"/srv", false}, {"/media/stick", true}, {"/", false}};
  Open();
  ASSERT_EQ(Combo().count(), 2);
  EXPECT_EQ(Combo().itemText(0), "/");
  EXPECT_EQ(Combo().itemText(1), "/srv");
  EXPECT_EQ(Combo().currentIndex(), 0);
  EXPECT_TRUE(Combo().isEditable());
}

TEST_F(FindPageTest, AMachineThatTellsNoDrivesShowsAnErrorBox) {
  machine_.volumes.clear();
  Open();
  ASSERT_TRUE(Comes([this] { return !boxes_.seen.empty(); }));
  EXPECT_EQ(boxes_.Texts(), QStringList("ERROR: Drive Info retrieval failed "));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Critical);
}

TEST_F(FindPageTest, AMachineWithRemovableDrivesAloneHasAnEmptyList) {
  machine_.volumes = {{"/media/stick", true}};
  Open();
  EXPECT_EQ(Combo().count(), 0);
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(FindPageTest, TheLatestHitStandsOnTop) {
  machine_.Write("drive/first.ost");
  machine_.Write("drive/sub/second.Ost");
  machine_.Write("drive/sub/sub/third.OST");
  machine_.Write("drive/sub/none.pst");
  std::filesystem::create_directories(Drive() / "folder.ost");
  Open();
  Search();
  EXPECT_EQ(Rows(), QStringList({PathToQt(Drive() / "sub/sub/third.OST"), PathToQt(Drive() / "sub/second.Ost"),
                                 PathToQt(Drive() / "first.ost")}));
  EXPECT_TRUE(List().isEnabled());
  EXPECT_EQ(Control<QLineEdit>(kSearchStatusId).text(), "");
}

TEST_F(FindPageTest, ANamedRowBecomesTheSource) {
  const auto file = machine_.Write("drive/sub/mail.ost");
  Open();
  Search();
  EXPECT_FALSE(CanGoOn());
  ClickRow(0);
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(file)));
  EXPECT_EQ(State().sourceFileName, u"mail.ost");
  ASSERT_TRUE(CanGoOn());
  Press(kNextId);
  EXPECT_TRUE(IsPage<CCustom2Dlg>());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CFindPstDlg>());
  EXPECT_EQ(Rows(), QStringList()) << "the page is made anew";
}

TEST_F(FindPageTest, TheHighlightedFileIsTheOneThatIsConverted) {
  const auto first = machine_.Write("drive/a/mail.ost"), second = machine_.Write("drive/b/mail.ost");
  Open();
  Search();
  ASSERT_EQ(List().Rows().Count(), 2);
  const auto rowOf = [this](const std::filesystem::path& file) { return int(Rows().indexOf(PathToQt(file))); };
  ClickRow(rowOf(first));
  ASSERT_EQ(State().sourcePath, FromQt(PathToQt(first)));
  const QRect place = List().visualRect(List().model()->index(rowOf(second), 0));
  QTest::mouseClick(List().viewport(), Qt::RightButton, {}, place.center());
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(second))) << "a right click";
  List().setFocus();
  QTest::keyClicks(&List(), PathToQt(first));
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(first))) << "letters that are typed";
  EXPECT_TRUE(CanGoOn());
}

TEST_F(FindPageTest, ASearchThatIsRefusedLeavesNoChoiceBehind) {
  machine_.volumes.push_back({"/media/stick", true});
  machine_.Write("drive/mail.ost");
  Open();
  Search();
  ClickRow(0);
  ASSERT_TRUE(CanGoOn());
  Combo().setEditText("/media/stick");
  boxes_.Answer(QMessageBox::Ok);
  Press(kFindId);
  EXPECT_EQ(Rows(), QStringList());
  EXPECT_FALSE(CanGoOn()) << "nothing is highlighted";
}

TEST_F(FindPageTest, AClickBelowTheRowsDisablesNextAndKeepsTheSource) {
  const auto file = machine_.Write("drive/mail.ost");
  Open();
  Search();
  ClickRow(0);
  QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, QPoint(20, List().viewport()->height() - 3));
  EXPECT_FALSE(CanGoOn());
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(file)));
}

TEST_F(FindPageTest, NothingFoundIsARowThatCannotBeChosen) {
  Open();
  Search();
  EXPECT_EQ(Rows(), QStringList("File Not Found"));
  EXPECT_FALSE(List().isEnabled());
  ClickRow(0);
  EXPECT_TRUE(State().sourcePath.empty());
  EXPECT_FALSE(CanGoOn());
}

TEST_F(FindPageTest, ASecondSearchBeginsWithAnEmptyList) {
  machine_.Write("drive/mail.ost");
  Open();
  Search();
  ClickRow(0);
  std::filesystem::remove(Drive() / "mail.ost");
  Search();
  EXPECT_EQ(Rows(), QStringList("File Not Found"));
  EXPECT_FALSE(CanGoOn());
}

TEST_F(FindPageTest, WhileItSearchesItCanBeStoppedButNotLeft) {
  OpenLargeDrive();
  Press(kFindId);
  ASSERT_EQ(Caption(), "S&top");
  EXPECT_EQ(Control<controls::PictureButton>(kFindId).Picture(), 221);
  EXPECT_FALSE(Combo().isEnabled());
  EXPECT_FALSE(List().isEnabled());
  boxes_.Answer(QMessageBox::Ok);
  Press(kBackId);
  boxes_.Answer(QMessageBox::Ok);
  Press(kMainId);
  boxes_.Answer(QMessageBox::Ok);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList({kBackBox, kBackBox, kCloseBox}));
  EXPECT_TRUE(IsPage<CFindPstDlg>());
}

TEST_F(FindPageTest, StoppingKeepsTheRowsFoundSoFar) {
  OpenLargeDrive();
  Press(kFindId);
  ASSERT_TRUE(Comes([this] { return List().Rows().Count() == 1; }));
  Press(kFindId);
  EXPECT_EQ(Caption(), "Fin&d");
  EXPECT_TRUE(List().isEnabled());
  ClickRow(0);
  EXPECT_TRUE(CanGoOn());
  ASSERT_TRUE(Comes([this] { return Combo().isEnabled(); })) << "the search itself ends a little later";
  EXPECT_EQ(Rows(), QStringList(PathToQt(LargeDrive() / "mail.ost")));
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(FindPageTest, ASearchThatIsStoppedBeforeAnyHitHasFoundNothing) {
  machine_.volumes = {{LargeDrive() / "0", false}};  // the folders without the file
  Open();
  Press(kFindId);
  Press(kFindId);
  ASSERT_TRUE(Comes([this] { return Combo().isEnabled(); }));
  EXPECT_EQ(Rows(), QStringList("File Not Found"));
  EXPECT_FALSE(List().isEnabled());
  EXPECT_FALSE(CanGoOn());
}

TEST_F(FindPageTest, ThePageCanBeLeftWhileAStoppedSearchStillEnds) {
  OpenLargeDrive();
  Press(kFindId);
  Press(kFindId);
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
  QTest::qWait(200);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(FindPageTest, TheStatusShowsTheFolderAtHand) {
  OpenLargeDrive();
  Press(kFindId);
  EXPECT_TRUE(Comes([this] { return Control<QLineEdit>(kSearchStatusId).text().startsWith(PathToQt(LargeDrive())); }));
}

TEST_F(FindPageTest, TheTipOfTheButtonSaysWhatTheButtonDoes) {
  OpenLargeDrive();
  EXPECT_EQ(Control<QWidget>(kFindId).toolTip(), "Find (Alt+D)");
  Press(kFindId);
  EXPECT_EQ(Control<QWidget>(kFindId).toolTip(), "Stop (Alt+T)");
  EXPECT_EQ(Control<QWidget>(kFindId).accessibleName(), "Stop");
  Press(kFindId);
  EXPECT_EQ(Control<QWidget>(kFindId).toolTip(), "Find (Alt+D)");
}

TEST_F(FindPageTest, ALongFolderInTheStatusEndsInAnEllipsis) {
  const std::filesystem::path deep = Drive() / std::string(120, 'd') / std::string(120, 'e');
  std::filesystem::create_directories(deep);
  for (int i = 0; i < 3000; ++i) std::filesystem::create_directory(deep / std::to_string(i));
  Open();
  Press(kFindId);
  QString seen;
  ASSERT_TRUE(Comes([&] {
    seen = Control<QLineEdit>(kSearchStatusId).text();
    return seen.size() > 20;
  }));
  EXPECT_TRUE(seen.endsWith(u'\u2026')) << seen.toStdString();
  EXPECT_TRUE(PathToQt(deep).startsWith(seen.chopped(1)));
  const auto& status = Control<QLineEdit>(kSearchStatusId);
  EXPECT_LE(status.fontMetrics().horizontalAdvance(seen), status.width());
}

TEST_F(FindPageTest, ADriveThatIsMountedBelowTheFolderIsSearchedWithIt) {
  // Shared memory is a volume of its own below the devices; here it is a drive.
  const auto devices = platform::ListFolder("/dev");
  const auto memory = std::find_if(devices.begin(), devices.end(),
                                   [](const auto& entry) { return entry.name == "shm" && entry.isOtherVolume; });
  ASSERT_NE(memory, devices.end()) << "every Debian mounts shared memory there";
  QTemporaryDir folder("/dev/shm/velmora-test-XXXXXX");
  ASSERT_TRUE(folder.isValid());
  ASSERT_TRUE(QFile(folder.filePath("mail.ost")).open(QIODevice::WriteOnly));
  machine_.volumes = {{"/dev", false}, {"/dev/shm", false}};
  Open();
  ASSERT_EQ(Combo().currentText(), "/dev");
  Search();
  EXPECT_TRUE(Rows().contains(folder.filePath("mail.ost")));
  machine_.volumes = {{"/dev", false}, {"/dev/shm", true}};
  Search();
  EXPECT_FALSE(Rows().contains(folder.filePath("mail.ost"))) << "a removable one is none of those listed";
}

TEST_F(FindPageTest, ARemovableDriveIsRefusedAndThePageCountsAsSearching) {
  machine_.volumes.push_back({"/media/stick", true});
  Open();
  Combo().setEditText("/media/stick/");
  boxes_.Answer(QMessageBox::Ok);
  Press(kFindId);
  EXPECT_EQ(boxes_.Texts(), QStringList(kDriveBox));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  EXPECT_EQ(Caption(), "Fin&d") << "no search is on";
  boxes_.Answer(QMessageBox::Ok);
  Press(kBackId);
  boxes_.Answer(QMessageBox::Ok);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList({kDriveBox, kBackBox, kCloseBox}));

  Press(kFindId);
  EXPECT_EQ(boxes_.seen.size(), 3u) << "one click frees the page and does nothing else";
  EXPECT_TRUE(List().isEnabled());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(FindPageTest, TheTextOfTheDriveCanBeTypedOver) {
  const auto file = machine_.Write("elsewhere/mail.ost");
  Open();
  Combo().setFocus();
  Combo().lineEdit()->selectAll();
  QTest::keyClicks(&Combo(), PathToQt(file.parent_path()));
  Search();
  EXPECT_EQ(Rows(), QStringList(PathToQt(file)));
}

TEST_F(FindPageTest, ADriveThatIsNotThereHasNothing) {
  Open();
  Combo().setEditText("/no such drive");
  Search();
  EXPECT_EQ(Rows(), QStringList("File Not Found"));
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(FindPageTest, WhileIdleTheCloseBoxAsksWhetherToExit) {
  Open();
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: Do you want to exit the application?"));
}

}  // namespace
}  // namespace velmora::workflow
