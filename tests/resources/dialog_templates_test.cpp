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

TEST(DialogTemplatesTest, TheTextsOfThePagesAreToTheLetter) {
  const struct {
    TemplateId page;
    std::uint16_t id;
    std::u16string_view text;
  } expected[] = {
      {kBrowseTemplate, 1089, u"Click browse to locate the OST file that needs to be converted"},
      {kBrowseTemplate, 1077,
       u"Default Store Path for Outlook OST file\n\nWindows XP or Windows Server 2003: %your drive%:\\Documents and "
       u"Settings\\username\\Local Settings\\Application Data\\Microsoft\\Outlook\n\nWindows Vista or Windows 7: %your "
       u"drive%:\\users\\username\\AppData\\Local\\Microsoft\\Outlook\n\n"},
      {kBrowseTemplate, 1085, u"Select OST file to convert :"},
      {kFindTemplate, 1089, u"Select the appropriate drive and click find to search"},
      {kFindTemplate, 1081,
       u"In case your OST file is not located in the default store location. Use this option to search your OST "
       u"file(s)."},
      {kFindTemplate, 1085, u"Please select drive to search ost:"},
      {kProfileTemplate, 1089, u"Select the file and click next to repair"},
      {kProfileTemplate, 1078,
       u"If you have multiple Outlook profiles or profiles for multiple users on your computer then all the associated "
       u"PST files will be listed here. Thus, you can select the PST file that needs to be repaired."},
      {kDestinationTemplate, 1089, u"Path for storing converted file.\n\n"},
      {kDestinationTemplate, 1071,
       u"Click browse to select local destination path for storing converted OST file as PST\n\n\n(This location can "
       u"be "
       u"a local drive or a network mapped folder and even it can be the same folder\nwhere your OST file is "
       u"stored).\n\nPlease make sure that you enough free disk space on the destination path to store the converted "
       u"PST file."},
      {kDestinationTemplate, 1091,
       u"Click browse to select destination path, where new PST file will be created after conversion."},
      {kDestinationTemplate, 1063, u"Normal Scan (Recommended)"},
      {kDestinationTemplate, 1064, u"Smart Scan"},
      {kDestinationTemplate, 1085, u"Select destination path :"},
      {kProgressTemplate, 1098, u"Converting OST to PST, please wait..."},
      {kProgressTemplate, 1100,
       u"\nIt is recommended that you close all other applications when conversion is in progress.\n\nThis will make "
       u"it "
       u"possible to provide all required memory access to the application,\nwhich will help in making the conversion "
       u"process smoother and faster."},
      {kProgressTemplate, 1097, u"Starting Conversion..."},
      {kProgressTemplate, 1093, u"0%"},
  };
  for (const auto& each : expected) {
    EXPECT_TRUE(Find(each.page, each.id).text == each.text) << each.page << " " << each.id;
  }
}

TEST(DialogTemplatesTest, TheStatesOfTheButtonsHaveTheirArt) {
  using Art = std::array<std::uint16_t, 5>;
  const struct {
    TemplateId page;
    std::uint16_t id;
    Art art;
  } expected[] = {
      {kStartTemplate, 1062, {140, 141, 141}},
      {kStartTemplate, 1063, {138, 139, 139}},
      {kStartTemplate, 1064, {136, 137, 137}},
      {kBrowseTemplate, 1065, {214}},
      {kFindTemplate, 1080, {131}},
      {kDestinationTemplate, 1065, {214}},
      {kDestinationTemplate, 1063, {216, 217, 216, 216, 215}},
      {kDestinationTemplate, 1064, {220, 219, 220, 220, 264}},
      {kProgressTemplate, 1095, {228}},
      {kProgressTemplate, 1096, {230}},
  };
  for (const auto& each : expected) EXPECT_EQ(Find(each.page, each.id).art, each.art) << each.page << " " << each.id;
  for (const TemplateId page : {kBrowseTemplate, kFindTemplate, kProfileTemplate, kDestinationTemplate}) {
    EXPECT_EQ(Find(page, 1076).art, Art({212})) << page;
    EXPECT_EQ(Find(page, 1068).art, Art({213})) << page;
    EXPECT_EQ(Find(page, 1069).art, Art({145, 147, 146})) << page;
    EXPECT_EQ(Find(page, 32826).art, Art({32827, 32828, 32828})) << page;
  }
}

bool SamePlace(const TemplateRect& a, const TemplateRect& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

TEST(DialogTemplatesTest, HeadingLabelFieldAndItsButtonStandAtOnePlaceOnEveryPage) {
  const struct {
    TemplateId page;
    std::uint16_t field, button;
  } pages[] = {{kBrowseTemplate, kSourceEditId, kBrowseId},
               {kFindTemplate, kDriveComboId, kFindId},
               {kDestinationTemplate, kDestinationEditId, kBrowseId}};
  for (const auto& each : pages) {
    EXPECT_TRUE(SamePlace(Find(each.page, kHeadingId).rect, Find(kBrowseTemplate, kHeadingId).rect)) << each.page;
    EXPECT_TRUE(SamePlace(Find(each.page, kFieldLabelId).rect, Find(kBrowseTemplate, kFieldLabelId).rect)) << each.page;
    EXPECT_TRUE(SamePlace(Find(each.page, each.field).rect, Find(kBrowseTemplate, kSourceEditId).rect)) << each.page;
    EXPECT_TRUE(SamePlace(Find(each.page, each.button).rect, Find(kBrowseTemplate, kBrowseId).rect)) << each.page;
  }
}

}  // namespace
}  // namespace velmora::resources
