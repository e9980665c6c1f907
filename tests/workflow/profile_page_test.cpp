#include "controls/file_rows.h"
#include "controls/tx_list_ctrl.h"
#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;
using controls::CTXListCtrl;

class ProfilePageTest : public WizardTest {
 protected:
  void Open() {
    machine_.profileFolders = {machine_.folder.Path() / "outlook", machine_.folder.Path() / "wine"};
    Start();
    LeavePage();
    frame_->OpenProfilePage();
  }
  CTXListCtrl& List() { return Control<CTXListCtrl>(kFileListId); }
  QStringList Names() {
    QStringList names;
    for (int row = 0; row < List().Rows().Count(); ++row) names << List().Rows().TextAt(row).section('/', -1);
    return names;
  }
  void ClickRow(int row) {
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualRect(List().model()->index(row, 0)).center());
  }
};

TEST_F(ProfilePageTest, ListsPstFilesThenOstFilesOfTheFolderItself) {
  machine_.Write("outlook/b.ost");
  machine_.Write("outlook/a.pst");
  machine_.Write("outlook/c.txt");
  machine_.Write("outlook/sub/d.pst");
  std::filesystem::create_directories(machine_.folder.Path() / "outlook" / "folder.ost");
  machine_.Write("wine/e.Pst");
  Open();
  EXPECT_EQ(Names(), QStringList({"a.pst", "b.ost", "e.Pst"}));
}

TEST_F(ProfilePageTest, HasItsOwnSizeOnEveryDisplay) {
  Open();
  EXPECT_EQ(CurrentPage().size(), QSize(815, 516));
  frame_->DpiX = frame_->DpiY = 144;
  LeavePage();
  frame_->OpenProfilePage();
  EXPECT_EQ(CurrentPage().size(), QSize(815, 516));
}

TEST_F(ProfilePageTest, ARowLeadsToTheDestinationAndBack) {
  const auto file = machine_.Write("outlook/a.pst");
  Open();
  EXPECT_FALSE(Control<QWidget>(kNextId).isEnabled());
  ClickRow(0);
  EXPECT_EQ(State().sourcePath, FromQt(PathToQt(file)));
  EXPECT_EQ(State().sourceFileName, u"a.pst");
  Press(kNextId);
  ASSERT_TRUE(IsPage<CCustom2Dlg>());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CRepairProfileDlg>());
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(ProfilePageTest, MainReturnsToTheStart) {
  Open();
  Press(kMainId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(ProfilePageTest, AClickBelowTheRowsDisablesNext) {
  machine_.Write("outlook/a.pst");
  Open();
  ClickRow(0);
  QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, QPoint(20, List().viewport()->height() - 3));
  EXPECT_FALSE(Control<QWidget>(kNextId).isEnabled());
}

TEST_F(ProfilePageTest, AFolderThatIsMissingListsNothing) {
  Open();
  EXPECT_EQ(Names(), QStringList());
}

TEST_F(ProfilePageTest, TheCloseBoxAsks) {
  Open();
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: Do you want to exit the application?"));
  EXPECT_TRUE(IsPage<CRepairProfileDlg>());
}

}  // namespace
}  // namespace velmora::workflow
