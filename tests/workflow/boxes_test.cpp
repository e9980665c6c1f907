// Whether the boxes show all that they have to say, on displays of several resolutions.
#include "workflow/boxes.h"

#include <QLabel>
#include <QScreen>

#include "conversion/notices.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/harness.h"

namespace velmora::workflow {
namespace {

using namespace resources;

class BoxesTest : public testing::Test {
 protected:
  /// Every text that a box can have.
  static std::vector<text::Text> AllTexts() {
    std::vector<text::Text> texts = {
        {},
        text::Text(kWindowClassFailure),
        text::Text(kHelpFileMissing),
        text::Text(kSearchBlocksBack),
        text::Text(kSearchBlocksClose),
        text::Text(kDrivesFailed),
        text::Text(kButtonCreationFailed),
        text::Text(kLinkCreationFailed),
    };
    const text::Text path = text::Text(u"/srv/archive/mail of the office/2019/") + text::Text(40, u'n') +
                            u" Converted0/" + text::Text(40, u'n') + u" Converted.pst";
    for (int kind = 0; kind <= static_cast<int>(engine::NoticeKind::kAborted); ++kind) {
      texts.push_back(conversion::TextOf({static_cast<engine::NoticeKind>(kind), path, {}}).text);
    }
    for (const StringId id : {kStopQuestion, kExitQuestion, kNotEnoughSpace, kRemovableDrive, kOutlookRunning,
                              kLaunchFailed, kInternetModeRefused, kOutlookMissing}) {
      texts.emplace_back(LoadString(id));
    }
    for (int code = 0; code < 33; ++code) texts.emplace_back(LinkFailureText(code));
    return texts;
  }

  static void ExpectWhole(const QMessageBox& box) {
    const auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    ASSERT_NE(label, nullptr);
    const QRect room = label->contentsRect();
    const int flags = label->wordWrap() ? int(Qt::TextWordWrap) : 0;
    const QRect needed = label->fontMetrics().boundingRect(QRect(0, 0, room.width(), 100000), flags, box.text());
    EXPECT_LE(needed.height(), room.height()) << box.text().toStdString();
    EXPECT_LE(needed.width(), room.width()) << box.text().toStdString();
    EXPECT_TRUE(box.rect().contains(QRect(label->mapTo(&box, QPoint(0, 0)), label->size())))
        << box.text().toStdString();
  }

  Boxes boxes_;
};

TEST_F(BoxesTest, EveryTextIsShownWhole) {
  for (const BoxIcon icon : {BoxIcon::None, BoxIcon::Information, BoxIcon::Error}) {
    for (const text::Text& text : AllTexts()) {
      boxes_.Work([](QMessageBox& box) {
        ExpectWhole(box);
        box.reject();
      });
      ShowBox(nullptr, text, LoadString(kInformationTitle), icon);
    }
  }
  for (const StringId question : {kStopQuestion, kExitQuestion}) {
    boxes_.Work([](QMessageBox& box) {
      ExpectWhole(box);
      box.reject();
    });
    AskYesNo(nullptr, LoadString(question), LoadString(kConfirmationTitle));
  }
  EXPECT_EQ(boxes_.seen.size(), 3 * AllTexts().size() + 2);
}

TEST_F(BoxesTest, ABoxHasTheProgramsIconAndRoomForItsTitle) {
  for (const text::TextView title : {LoadString(kErrorTitle), LoadString(kProductTitle)}) {
    boxes_.Work([](QMessageBox& box) {
      EXPECT_FALSE(box.windowIcon().isNull());
      const QFontMetrics letters(box.font());
      EXPECT_GE(box.width(), letters.horizontalAdvance(box.windowTitle()) + 6 * letters.height());
      box.reject();
    });
    ShowBox(nullptr, u"", title, BoxIcon::Error);
  }
  EXPECT_EQ(boxes_.seen.size(), 2u);
}

TEST_F(BoxesTest, TheTextOfABoxCanBeSelected) {
  boxes_.Work([](QMessageBox& box) {
    EXPECT_TRUE(box.textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_TRUE(box.textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
    box.reject();
  });
  ShowBox(nullptr, u"/out/mail.pst", LoadString(kErrorTitle), BoxIcon::Error);
  EXPECT_EQ(boxes_.seen.size(), 1u);
}

class DisplayTest : public WizardTest {};

TEST_F(DisplayTest, TheFrameReadsTheResolutionOfTheDisplay) {
  Start();
  // Set for the test program where it runs again on other displays. One of twice the resolution is scaled by the
  // platform, and tells that of its large pixels.
  const int set = qEnvironmentVariableIsEmpty("QT_FONT_DPI") ? 96 : qEnvironmentVariableIntValue("QT_FONT_DPI");
  const int dpi = set == 192 ? 96 : set;
  EXPECT_EQ(frame_->DpiX, dpi);
  EXPECT_EQ(frame_->DpiY, dpi);
  const QSize size = dpi == 120 ? QSize(815, 530) : dpi == 144 ? QSize(1050, 629) : QSize(700, 430);
  EXPECT_EQ(CurrentPage().window()->size(), size);
}

}  // namespace
}  // namespace velmora::workflow
