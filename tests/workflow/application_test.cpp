#include "workflow/application.h"

#include <QSettings>

#include "workflow/custom_dlg.h"
#include "workflow/harness.h"
#include "workflow/mode_notice.h"

namespace velmora::workflow {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInstalled = "[Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\OUTLOOK.EXE]\n";
constexpr const char* kInternetMode =
    "[SOFTWARE\\Microsoft\\Office\\9.0\\Outlook\\Setup]\nMailSupport=0\nRegisterForms=1\n";
constexpr const char* kMissingBox =
    "Error: Microsoft Office Outlook currently not installed or is not working,\n"
    "please reinstall Microsoft Office Outlook and relaunch the application.";
constexpr const char* kModeBox =
    "Velmora Convert OST to PST: Currently selected outlook mode (IMO) is not supported.Please change it to C/W mode.";

class ApplicationTest : public testing::Test {
 protected:
  /// Starts the program and lets what it posted happen.
  bool Start() {
    application_ = std::make_unique<CVMREPAIRMAILApp>(machine_.Make());
    const bool started = application_->InitInstance();
    QTest::qWait(20);
    return started;
  }
  void Registry(const std::string& text) { machine_.Write(machine_.registryFile, text); }
  bool HasPage() { return application_->MainFrame() != nullptr && application_->MainFrame()->CurrentPage() != nullptr; }

  Machine machine_;
  Boxes boxes_;
  std::unique_ptr<CVMREPAIRMAILApp> application_;
};

TEST_F(ApplicationTest, StartsSilentlyWithTheStartPage) {
  EXPECT_TRUE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList());
  ASSERT_TRUE(HasPage());
  EXPECT_NE(qobject_cast<CCustomDlg*>(application_->MainFrame()->CurrentPage()), nullptr);
  EXPECT_FALSE(application_->MainFrame()->isVisible());
}

TEST_F(ApplicationTest, TheChecksComeInTheirOrder) {
  machine_.hasWindowClass = machine_.hasControls = false;
  machine_.lock = tl::unexpected(platform::Failure{platform::FailureKind::kExists, "lock", 0, ""});
  machine_.programs = {"OUTLOOK.EXE"};
  Registry(kInternetMode);
  InDialog<CInformationDlg>([](CInformationDlg& notice) { notice.reject(); });

  // What was refused is put right, and the next check refuses.
  const std::function<void()> corrections[] = {
      [this] { machine_.hasWindowClass = true; },
      [this] { machine_.hasControls = true; },
      [this] { machine_.lock = {}; },
      [this] { Registry(std::string(kInstalled) + kInternetMode); },
      [this] { machine_.programs.clear(); },
  };
  for (const auto& correct : corrections) {
    EXPECT_FALSE(Start());
    correct();
  }
  EXPECT_FALSE(Start());
  QStringList titles;
  for (const Boxes::Seen& box : boxes_.seen) titles << box.title + ": " + box.text.left(12);
  EXPECT_EQ(titles, QStringList({"Velmora Convert OST to PST: GetClassInfo",
                                 "Velmora Convert OST to PST: ", "Error: ", "Error: Microsoft Of",
                                 "Warning: Velmora Conv", "Velmora Convert OST to PST: Currently se"}));
}

TEST_F(ApplicationTest, TheBarsAreKeptUnderTheMakersNameBesideTheOtherSettings) {
  ASSERT_TRUE(Start());
  application_->MainFrame()->State().skipExitPrompt = true;
  application_->MainFrame()->CloseRule();
  const QSettings kept(PathToQt(machine_.Make().settingsFolder / "bars.ini"), QSettings::IniFormat);
  EXPECT_EQ(kept.allKeys(), QStringList("Velmora Software/CommandBars"));
  EXPECT_EQ(RealServices().settingsFolder, platform::ConfigFolder().value());
}

TEST_F(ApplicationTest, WithoutAWindowClassItSaysSo) {
  machine_.hasWindowClass = false;
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList("Velmora Convert OST to PST: GetClassInfoEx failed"));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::NoIcon);
}

TEST_F(ApplicationTest, WithoutControlsTheBoxIsEmpty) {
  machine_.hasControls = false;
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  ASSERT_EQ(boxes_.seen.size(), 1u);
  EXPECT_EQ(boxes_.seen[0].text, "");
}

TEST_F(ApplicationTest, ASecondInstanceShowsAnEmptyErrorBoxAndEndsHard) {
  machine_.lock = tl::unexpected(platform::Failure{platform::FailureKind::kExists, "lock", 0, ""});
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: "));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Critical);
  EXPECT_THAT(machine_.log, ElementsAre("exit"));
  EXPECT_FALSE(HasPage());
}

TEST_F(ApplicationTest, ALockThatCannotBeMadeIsAFailedLaunch) {
  machine_.lock = tl::unexpected(platform::Failure{platform::FailureKind::kDenied, "lock", 0, ""});
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList("Error: Failed to launch Velmora Convert OST to PST."));
  EXPECT_THAT(machine_.log, IsEmpty()) << "it returns, and does not end hard";
}

TEST_F(ApplicationTest, WithoutOutlookItDoesNotStart) {
  Registry("");
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList(kMissingBox));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Critical);
}

TEST_F(ApplicationTest, OutlookOfTheNarrowViewCounts) {
  Registry("[Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\App Paths\\OUTLOOK.EXE]\n");
  EXPECT_TRUE(Start());
}

TEST_F(ApplicationTest, AKeyThatCannotBeSetCountsAsNotInstalled) {
  Registry(std::string(kInstalled) + "Access=Read\n");
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList(kMissingBox));
}

TEST_F(ApplicationTest, ARunningOutlookEndsTheProcessBehindAWarning) {
  machine_.programs = {"bash", "OUTLOOK.EXE"};
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(),
            QStringList("Warning: Velmora Convert OST to PST can not continue because Microsoft office outlook is "
                        "running.\nPlease close the Microsoft office outlook."));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Warning);
  EXPECT_THAT(machine_.log, ElementsAre("exit"));
  EXPECT_FALSE(HasPage());
}

TEST_F(ApplicationTest, OnlyTheExactNameIsOutlookAndOnlyAmongTheFirstProcesses) {
  machine_.programs = {"outlook.exe", "OUTLOOK", "OUTLOOK.EXE2"};
  machine_.programs.resize(1024);
  machine_.programs.push_back("OUTLOOK.EXE");
  EXPECT_TRUE(Start());
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(ApplicationTest, NoKeyOfOutlook2000MeansNoNotice) {
  Registry(kInstalled);
  EXPECT_TRUE(Start());
  EXPECT_FALSE(application_->CheckOutlook2000Mode(true));
}

TEST_F(ApplicationTest, AnotherModeOrAMissingValueMeansNoNotice) {
  for (const char* values : {"MailSupport=1\nRegisterForms=1\n", "RegisterForms=1\n", "MailSupport=0\n"}) {
    Registry(std::string(kInstalled) + "[SOFTWARE\\Microsoft\\Office\\9.0\\Outlook\\Setup]\n" + values);
    EXPECT_TRUE(Start()) << values;
  }
}

TEST_F(ApplicationTest, InternetModeThatIsIgnoredEndsTheProgramBehindABox) {
  Registry(std::string(kInstalled) + kInternetMode);
  InDialog<CInformationDlg>([](CInformationDlg& notice) {
    EXPECT_EQ(notice.windowTitle(), "Please read carefully");
    QTest::mouseClick(notice.findChild<QWidget*>("177"), Qt::LeftButton);
  });
  boxes_.Answer(QMessageBox::Ok);
  EXPECT_FALSE(Start());
  EXPECT_EQ(boxes_.Texts(), QStringList(kModeBox));
  EXPECT_EQ(boxes_.seen[0].icon, QMessageBox::Information);
  EXPECT_FALSE(HasPage());
}

TEST_F(ApplicationTest, InternetModeThatIsChangedLetsTheProgramStart) {
  Registry(std::string(kInstalled) + kInternetMode);
  InDialog<CInformationDlg>([](CInformationDlg& notice) {
    InDialog<CDisclaimerDlg>(
        [](CDisclaimerDlg& terms) { QTest::mouseClick(terms.findChild<QWidget*>("184"), Qt::LeftButton); });
    QTest::mouseClick(notice.findChild<QWidget*>("176"), Qt::LeftButton);
  });
  EXPECT_TRUE(Start());
  EXPECT_TRUE(boxes_.seen.empty());
}

TEST_F(ApplicationTest, TheEndWaitsAndIsHard) {
  ASSERT_TRUE(Start());
  machine_.log.clear();
  application_->ExitInstance();
  EXPECT_THAT(machine_.log, ElementsAre("sleep 300", "exit"));
}

}  // namespace
}  // namespace velmora::workflow
