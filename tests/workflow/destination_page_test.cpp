#include <QAbstractButton>
#include <QLineEdit>

#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/harness.h"
#include "workflow/progress_dlg.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class DestinationPageTest : public WizardTest {
 protected:
  void Open(TemplateId previous = kBrowseTemplate) {
    machine_.run = [](conversion::COutLook&, conversion::RunState&) { return conversion::RunEnd::kEndedEarly; };
    if (frame_ == nullptr) Start();
    LeavePage();
    frame_->OpenDestinationPage(previous);
  }

  void Pick(const std::filesystem::path& folder) {
    PickInDialog(PathToQt(folder));
    Press(kBrowseId);
  }

  std::filesystem::path MakeFolder(const char* name) {
    std::filesystem::create_directory(machine_.folder.Path() / name);
    return machine_.folder.Path() / name;
  }

  bool CanConvert() { return Control<QWidget>(kNextId).isEnabled(); }
  QString Shown() { return Control<QLineEdit>(kDestinationEditId).text(); }
};

TEST_F(DestinationPageTest, AFolderThatIsPickedBecomesTheDestination) {
  Open();
  EXPECT_FALSE(CanConvert());
  const auto folder = MakeFolder("out");
  Pick(folder);
  EXPECT_EQ(Shown(), PathToQt(folder));
  EXPECT_EQ(State().destinationPath, FromQt(PathToQt(folder)));
  EXPECT_TRUE(CanConvert());
}

TEST_F(DestinationPageTest, TheFolderDialogAsksForFolders) {
  Open();
  InDialog<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Select destination path to save converted file.");
    EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
    dialog.reject();
  });
  Press(kBrowseId);
  EXPECT_EQ(Shown(), "");
  EXPECT_TRUE(State().destinationPath.empty());
}

TEST_F(DestinationPageTest, TheDialogBeginsBesideTheSourceThenWhereTheChoiceIs) {
  const auto folder = MakeFolder("out");
  machine_.Write("mail/outlook.ost");
  Open();
  State().sourcePath = FromQt(PathToQt(machine_.folder.Path() / "mail/outlook.ost"));
  QStringList began;
  const auto look = [&](QFileDialog& dialog) {
    began << dialog.directory().absolutePath();
    dialog.reject();
  };
  InDialog<QFileDialog>(look);
  Press(kBrowseId);
  Pick(folder);
  InDialog<QFileDialog>(look);
  Press(kBrowseId);
  EXPECT_EQ(began, QStringList({PathToQt(machine_.folder.Path() / "mail"), PathToQt(folder)}));
}

TEST_F(DestinationPageTest, CancellingTheDialogKeepsWhatWasPicked) {
  Open();
  const auto folder = MakeFolder("out");
  Pick(folder);
  InDialog<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
  Press(kBrowseId);
  EXPECT_EQ(Shown(), PathToQt(folder));
  EXPECT_TRUE(CanConvert());
}

TEST_F(DestinationPageTest, ConvertGoesByTheDestinationAndNotByTheTextShown) {
  Open();
  State().destinationPath = FromQt(PathToQt(MakeFolder("out")));
  Control<QLineEdit>(kDestinationEditId).setText("no folder");
  EXPECT_TRUE(CanConvert());
  State().destinationPath = u"/no folder";
  Control<QLineEdit>(kDestinationEditId).setText(PathToQt(machine_.folder.Path()));
  EXPECT_FALSE(CanConvert());
}

TEST_F(DestinationPageTest, AFolderOfNoPathEmptiesTheEdit) {
  Open();
  Pick(MakeFolder("out"));
  dynamic_cast<CCustom2Dlg&>(CurrentPage()).OnFolderPicked(QUrl("smb://server/share"));
  EXPECT_EQ(Shown(), "");
  EXPECT_TRUE(State().destinationPath.empty());
  EXPECT_FALSE(CanConvert());
}

TEST_F(DestinationPageTest, TheScanModeIsHiddenAndNormal) {
  Start();
  State().run.smartScan = true;
  Open();
  EXPECT_FALSE(State().run.smartScan);
  EXPECT_FALSE(Control<QWidget>(kNormalScanId).isVisible());
  EXPECT_FALSE(Control<QWidget>(kSmartScanId).isVisible());
  EXPECT_TRUE(Control<QAbstractButton>(kNormalScanId).isChecked());
}

TEST_F(DestinationPageTest, TheHiddenRadioButtonsStillSetTheScanMode) {
  Open();
  Control<QWidget>(kNormalScanId).show();
  Control<QWidget>(kSmartScanId).show();
  Press(kSmartScanId);
  EXPECT_TRUE(State().run.smartScan);
  EXPECT_FALSE(Control<QAbstractButton>(kNormalScanId).isChecked());
  Press(kNormalScanId);
  EXPECT_FALSE(State().run.smartScan);
}

TEST_F(DestinationPageTest, BackReturnsToThePageItCameFrom) {
  Open(kBrowseTemplate);
  Press(kBackId);
  EXPECT_TRUE(IsPage<CSelectPstDlg>());
  Open(kFindTemplate);
  Press(kBackId);
  EXPECT_TRUE(IsPage<CFindPstDlg>());
  Open(kProfileTemplate);
  Press(kBackId);
  EXPECT_TRUE(IsPage<CRepairProfileDlg>());
  Open(kStartTemplate);
  Press(kBackId);
  EXPECT_TRUE(IsPage<CCustom2Dlg>()) << "any other page leads nowhere";
}

TEST_F(DestinationPageTest, MainReturnsToTheStart) {
  Open();
  Press(kMainId);
  EXPECT_TRUE(IsPage<CCustomDlg>());
}

TEST_F(DestinationPageTest, BackAndForthLosesTheShownPathButNotTheDestination) {
  Open();
  const auto folder = MakeFolder("out");
  Pick(folder);
  Press(kBackId);
  LeavePage();
  frame_->OpenDestinationPage(kBrowseTemplate);
  EXPECT_EQ(Shown(), "");
  EXPECT_FALSE(CanConvert());
  EXPECT_EQ(State().destinationPath, FromQt(PathToQt(folder)));
}

TEST_F(DestinationPageTest, AFolderThatVanishesAfterItWasPickedCanStillBeTried) {
  Open();
  const auto folder = MakeFolder("out");
  Pick(folder);
  std::filesystem::remove(folder);
  EXPECT_TRUE(CanConvert());
  Press(kNextId);
  EXPECT_TRUE(IsPage<CProgressDlg>());
}

TEST_F(DestinationPageTest, EscapeLeavesNoWindowAndTheProgramGoesOn) {
  Open();
  Key(Qt::Key_Escape);
  EXPECT_TRUE(IsNowhere());
  EXPECT_TRUE(machine_.Log("exit").empty());
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(DestinationPageTest, EnterDoesNothing) {
  Open();
  Pick(MakeFolder("out"));
  Key(Qt::Key_Return);
  EXPECT_TRUE(IsPage<CCustom2Dlg>());
}

TEST_F(DestinationPageTest, ConvertStartsTheRunWithoutAnotherQuestion) {
  Open();
  Pick(MakeFolder("out"));
  Press(kNextId);
  EXPECT_TRUE(IsPage<CProgressDlg>());
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(DestinationPageTest, WithoutRoomABoxTellsSoAndNoWindowIsLeft) {
  Open();
  machine_.hasEnoughFreeSpace = [](text::TextView, text::TextView) { return false; };
  Pick(MakeFolder("out"));
  boxes_.Answer(QMessageBox::Ok);
  Press(kNextId);
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Information: Not enough free disk space available to save converted .pst file.\n"
                        "Please start the process again by selecting another destination path."));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  EXPECT_TRUE(IsNowhere());
  EXPECT_EQ(frame_->WorkerThread(), nullptr);
}

TEST_F(DestinationPageTest, TheCloseBoxAsks) {
  Open();
  boxes_.Answer(QMessageBox::No);
  CloseBox();
  EXPECT_EQ(boxes_.Texts(), QStringList("Information: Do you want to exit the application?"));
}

}  // namespace
}  // namespace velmora::workflow
