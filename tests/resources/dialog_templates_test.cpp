#include "resources/dialog_templates.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora::resources {
namespace {

constexpr TemplateId kAll[] = {kProgressTemplate, kStartTemplate,   kDestinationTemplate,
                               kBrowseTemplate,   kProfileTemplate, kFindTemplate};

const ControlTemplate& Find(TemplateId page, std::uint16_t id) {
  for (const ControlTemplate& control : FindTemplate(page).controls) {
    if (control.id == id) return control;
  }
  static const ControlTemplate none;
  ADD_FAILURE() << "no control " << id << " on template " << page;
  return none;
}

bool Overlap(const TemplateRect& a, const TemplateRect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

TEST(DialogTemplatesTest, PagesHaveTheirSizes) {
  for (TemplateId id : kAll) {
    EXPECT_EQ(FindTemplate(id).width, id == kProfileTemplate ? 589 : 465);
    EXPECT_EQ(FindTemplate(id).height, id == kProfileTemplate ? 317 : 265);
    EXPECT_EQ(FindTemplate(id).art, id == kStartTemplate ? 207 : 211);
  }
}

TEST(DialogTemplatesTest, EachNumberStandsOnceOnAPage) {
  for (TemplateId id : kAll) {
    std::set<std::uint16_t> seen;
    for (const ControlTemplate& control : FindTemplate(id).controls)
      EXPECT_TRUE(seen.insert(control.id).second) << control.id;
  }
}

TEST(DialogTemplatesTest, NoTwoVisibleControlsOverlapAndNoneLeavesThePage) {
  for (TemplateId id : kAll) {
    const DialogTemplate& page = FindTemplate(id);
    for (const ControlTemplate& control : page.controls) {
      EXPECT_LE(control.rect.x + control.rect.width, page.width) << id << " " << control.id;
      EXPECT_LE(control.rect.y + control.rect.height, page.height) << id << " " << control.id;
      for (const ControlTemplate& other : page.controls) {
        if (&control == &other || !control.visible || !other.visible) continue;
        EXPECT_FALSE(Overlap(control.rect, other.rect)) << id << ": " << control.id << ", " << other.id;
      }
    }
  }
}

TEST(DialogTemplatesTest, EveryControlCanBeNamedByAScreenReader) {
  for (TemplateId id : kAll) {
    for (const ControlTemplate& control : FindTemplate(id).controls) {
      EXPECT_FALSE(control.text.empty() && control.accessibleName.empty()) << id << " " << control.id;
    }
  }
}

TEST(DialogTemplatesTest, TheButtonsThatLeadOnStartDisabled) {
  for (TemplateId id : {kBrowseTemplate, kFindTemplate, kProfileTemplate, kDestinationTemplate}) {
    EXPECT_FALSE(Find(id, kNextId).enabled);
    EXPECT_TRUE(Find(id, kBackId).enabled);
  }
  EXPECT_EQ(Find(kDestinationTemplate, kNextId).text, u"Convert");
  EXPECT_FALSE(Find(kProgressTemplate, kFinishId).enabled);
  EXPECT_TRUE(Find(kProgressTemplate, kCancelId).enabled);
}

TEST(DialogTemplatesTest, TheScanModeIsHidden) {
  EXPECT_FALSE(Find(kDestinationTemplate, kNormalScanId).visible);
  EXPECT_FALSE(Find(kDestinationTemplate, kSmartScanId).visible);
  EXPECT_FALSE(Find(kDestinationTemplate, kShortDestinationTextId).visible);
  EXPECT_EQ(Find(kDestinationTemplate, kNormalScanId).text, u"Normal Scan (Recommended)");
}

TEST(DialogTemplatesTest, TheDestinationTextKeepsItsMissingWord) {
  EXPECT_NE(Find(kDestinationTemplate, kDestinationTextId).text.find(u"make sure that you enough free disk space"),
            std::u16string_view::npos);
}

}  // namespace
}  // namespace velmora::resources
