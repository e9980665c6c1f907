#include "workflow/mode_notice.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPlainTextEdit>

#include "workflow/harness.h"
#include "workflow/outlook_checks.h"

namespace velmora::workflow {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ModeNoticeTest : public testing::Test {
 protected:
  void SetUp() override {
    machine_.Write(machine_.registryFile,
                   "[SOFTWARE\\Microsoft\\Office\\9.0\\Outlook\\Setup]\nMailSupport=0\nRegisterForms=1\n");
  }

  std::optional<std::uint32_t> Mode() const {
    return platform::IniRegistry(machine_.registryFile).Query(kOutlook2000Key, "MailSupport");
  }

  /// Answers the notice, and the terms if they come, by the buttons of those numbers.
  void Answer(const char* notice, const char* terms) {
    InDialog<CInformationDlg>([=](CInformationDlg& dialog) {
      if (terms != nullptr) {
        InDialog<CDisclaimerDlg>(
            [=](CDisclaimerDlg& next) { QTest::mouseClick(next.findChild<QWidget*>(terms), Qt::LeftButton); });
      }
      QTest::mouseClick(dialog.findChild<QWidget*>(notice), Qt::LeftButton);
    });
    ShowModeNotice(machine_.Make());
  }

  Machine machine_;
};

TEST_F(ModeNoticeTest, ShowsItsFourTextsWithBlankLinesBetween) {
  CInformationDlg notice;
  const QString text = notice.findChild<QPlainTextEdit*>()->toPlainText();
  EXPECT_TRUE(
      text.startsWith("In order to recover the pst file the correct mode should be C/W\n(Corporate or Workgroup "
                      "Mode).\n\nSoftware can"));
  EXPECT_TRUE(text.contains("Manual Process\n\n1. Select"));
  EXPECT_TRUE(notice.findChild<QPlainTextEdit*>()->isReadOnly());
}

TEST_F(ModeNoticeTest, HasABoldHeadingAndTwoNamedButtons) {
  CInformationDlg notice;
  auto* heading = notice.findChild<QLabel*>();
  EXPECT_TRUE(heading->font().bold());
  EXPECT_EQ(heading->text(),
            "Software has detected Outlook 2000 installed on your system in IMO (Internet Mail only) mode. Please read "
            "below mentioned instructions carefully to effectively recover pst file.");
  EXPECT_EQ(notice.findChild<QAbstractButton*>("176")->text(), "Confirm");
  EXPECT_EQ(notice.findChild<QAbstractButton*>("177")->text(), "Ignore");
  CDisclaimerDlg terms;
  EXPECT_EQ(terms.windowTitle(), "Disclaimer");
  EXPECT_EQ(terms.findChild<QAbstractButton*>("184")->text(), "I Accept");
  EXPECT_EQ(terms.findChild<QAbstractButton*>("185")->text(), "I do not accept");
}

TEST_F(ModeNoticeTest, IgnoreChangesNothing) {
  Answer("177", nullptr);
  EXPECT_EQ(Mode(), 0u);
  EXPECT_THAT(machine_.log, IsEmpty());
}

TEST_F(ModeNoticeTest, TermsThatAreNotAcceptedChangeNothing) {
  Answer("176", "185");
  EXPECT_EQ(Mode(), 0u);
  EXPECT_THAT(machine_.log, IsEmpty());
}

TEST_F(ModeNoticeTest, AcceptedTermsStartOutlookAndSetTheMode) {
  Answer("176", "184");
  EXPECT_EQ(Mode(), 1u);
  EXPECT_THAT(machine_.log, ElementsAre("open /programs/Microsoft Office/Office/OUTLOOK.EXE", "sleep 400"));
}

TEST_F(ModeNoticeTest, ARunningOutlookIsNotStartedAgain) {
  machine_.programs = {"OUTLOOK.EXE"};
  Answer("176", "184");
  EXPECT_THAT(machine_.log, ElementsAre("sleep 400"));
}

TEST_F(ModeNoticeTest, AnotherModeStaysAndAMissingKeySkipsTheWait) {
  machine_.Write(machine_.registryFile, "[SOFTWARE\\Microsoft\\Office\\9.0\\Outlook\\Setup]\nMailSupport=2\n");
  ChangeOutlook2000Mode(machine_.Make());
  EXPECT_EQ(Mode(), 2u);
  machine_.Write(machine_.registryFile, "");
  machine_.log.clear();
  ChangeOutlook2000Mode(machine_.Make());
  EXPECT_THAT(machine_.log, ElementsAre("open /programs/Microsoft Office/Office/OUTLOOK.EXE"));
}

}  // namespace
}  // namespace velmora::workflow
