#include "workflow/panes/waiting_panels.h"

#include <QLabel>
#include <QProgressBar>

#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {
namespace {

void ExpectRunsWithoutAnEnd(const QFrame& panel, const char* id) {
  const auto* bar = panel.findChild<QProgressBar*>(id);
  ASSERT_NE(bar, nullptr) << id;
  EXPECT_EQ(bar->minimum(), 0);
  EXPECT_EQ(bar->maximum(), 0);
  EXPECT_FALSE(bar->isTextVisible());
}

class WaitingPanelsTest : public testing::Test {
 protected:
  WaitingPanelsTest() { owner_.show(); }
  QWidget owner_;
};

TEST_F(WaitingPanelsTest, TheLoadingPanelHasOneAnimationAndNoText) {
  const CDlgLoading panel(&owner_);
  EXPECT_FALSE(panel.isVisible()) << "until a folder is read";
  ExpectRunsWithoutAnEnd(panel, "1059");
  EXPECT_EQ(panel.findChildren<QWidget*>().size(), 1);
}

TEST_F(WaitingPanelsTest, TheSearchPanelSaysWhatIsSearchedAboveItsAnimation) {
  const CFindDlg panel(&owner_);
  EXPECT_FALSE(panel.isVisible());
  const auto* heading = panel.findChild<QLabel*>("1014");
  ASSERT_NE(heading, nullptr);
  EXPECT_EQ(heading->text(), "Searching .pst files");
  EXPECT_TRUE(heading->font().bold());
  ExpectRunsWithoutAnEnd(panel, "1013");
  const auto* place = panel.findChild<QLabel*>("1055");
  ASSERT_NE(place, nullptr);
  EXPECT_EQ(place->text(), "");
  EXPECT_EQ(panel.findChildren<QWidget*>().size(), 3);
}

}  // namespace
}  // namespace velmora::workflow
