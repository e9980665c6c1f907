#include "resources/dialog_templates.h"

#include <algorithm>
#include <iterator>

#include "resources/texts.h"

namespace velmora::resources {
namespace {

using enum ControlKind;

// Controls that stand in the same place on all pages of 465 by 265 units. The places of the menu button and
// of "Main" are in pixels and depend on the class of the display, so their rectangles are empty here.
constexpr ControlTemplate kMenuButton{
    .id = kMenuButtonId, .kind = kImageButton, .accessibleName = u"Menu", .key = u'E', .art = {32827, 32828, 32828}};
constexpr ControlTemplate kMainButton{
    .id = kMainId, .kind = kImageButton, .text = u"Main", .key = u'M', .art = {145, 147, 146}};
constexpr ControlTemplate kBackButton{
    .id = kBackId, .kind = kButton, .rect = {334, 215, 52, 42}, .text = u"Back", .key = u'B', .art = {212}};
constexpr ControlTemplate kNextButton{.id = kNextId,
                                      .kind = kButton,
                                      .rect = {392, 215, 52, 42},
                                      .text = u"Next",
                                      .key = u'N',
                                      .art = {213},
                                      .enabled = false};

constexpr ControlTemplate kStartControls[] = {
    {.id = kHiddenStartButtonId,
     .kind = kImageButton,
     .rect = {296, 53, 145, 55},
     .accessibleName = u"Profiles",
     .art = {140, 141, 141},
     .visible = false},
    {.id = kBrowseStartId,
     .kind = kImageButton,
     .rect = {296, 112, 145, 55},
     .accessibleName = u"Select OST file",
     .key = u'S',
     .art = {138, 139, 139}},
    {.id = kSearchStartId,
     .kind = kImageButton,
     .rect = {296, 176, 145, 55},
     .accessibleName = u"Find OST file",
     .key = u'F',
     .art = {136, 137, 137}},
};

constexpr ControlTemplate kBrowseControls[] = {
    {.id = kHeadingId,
     .kind = kHeading,
     .rect = {24, 65, 417, 13},
     .text = u"Click browse to locate the OST file that needs to be converted"},
    {.id = kStorePathTextId,
     .kind = kText,
     .rect = {24, 121, 417, 82},
     .text = u"Default Store Path for Outlook OST file\n\n"
             u"Windows XP or Windows Server 2003: %your drive%:\\Documents and Settings\\username\\Local Settings\\"
             u"Application Data\\Microsoft\\Outlook\n\n"
             u"Windows Vista or Windows 7: %your drive%:\\users\\username\\AppData\\Local\\Microsoft\\Outlook\n\n"},
    {.id = kFieldLabelId,
     .kind = kText,
     .rect = {24, 82, 260, 12},
     .text = u"Select OST file to convert :",
     .labels = kSourceEditId},
    {.id = kSourceEditId, .kind = kEdit, .rect = {24, 96, 338, 18}, .accessibleName = u"Select OST file to convert"},
    {.id = kBrowseId,
     .kind = kButton,
     .rect = {369, 95, 72, 20},
     .text = u"Browse...",
     .key = u'R',
     .art = {214},
     .pictureSide = PictureSide::kLeft},
    kBackButton,
    kNextButton,
    kMenuButton,
    kMainButton,
};

constexpr ControlTemplate kFindControls[] = {
    {.id = kHeadingId,
     .kind = kHeading,
     .rect = {24, 65, 417, 13},
     .text = u"Select the appropriate drive and click find to search"},
    {.id = kFindTextId,
     .kind = kText,
     .rect = {24, 119, 417, 22},
     .text = u"In case your OST file is not located in the default store location. Use this option to search your "
             u"OST file(s)."},
    {.id = kFieldLabelId,
     .kind = kText,
     .rect = {24, 82, 260, 12},
     .text = u"Please select drive to search ost:",
     .labels = kDriveComboId},
    {.id = kDriveComboId, .kind = kCombo, .rect = {24, 96, 338, 18}, .accessibleName = u"Drive to search"},
    {.id = kFindId,
     .kind = kButton,
     .rect = {369, 95, 72, 20},
     .text = u"Fin&d",
     .art = {131},
     .pictureSide = PictureSide::kLeft},
    {.id = kFileListId, .kind = kList, .rect = {24, 143, 417, 62}, .accessibleName = u"Files found"},
    {.id = kSearchStatusId, .kind = kStatus, .rect = {22, 214, 306, 14}, .accessibleName = u"Folder being searched"},
    kBackButton,
    kNextButton,
    kMenuButton,
    kMainButton,
};

constexpr ControlTemplate kProfileControls[] = {
    {.id = kHeadingId,
     .kind = kHeading,
     .rect = {26, 76, 537, 13},
     .text = u"Select the file and click next to repair"},
    {.id = kProfileTextId,
     .kind = kText,
     .rect = {26, 92, 537, 32},
     .text = u"If you have multiple Outlook profiles or profiles for multiple users on your computer then all the "
             u"associated PST files will be listed here. Thus, you can select the PST file that needs to be "
             u"repaired."},
    {.id = kFileListId,
     .kind = kList,
     .rect = {26, 126, 537, 120},
     .accessibleName = u"Data files of the profile folder"},
    {.id = kBackId, .kind = kButton, .rect = {453, 264, 52, 42}, .text = u"Back", .key = u'B', .art = {212}},
    {.id = kNextId,
     .kind = kButton,
     .rect = {511, 264, 52, 42},
     .text = u"Next",
     .key = u'N',
     .art = {213},
     .enabled = false},
    kMenuButton,
    kMainButton,
};

constexpr ControlTemplate kDestinationControls[] = {
    {.id = kHeadingId, .kind = kHeading, .rect = {24, 65, 417, 13}, .text = u"Path for storing converted file.\n\n"},
    {.id = kDestinationTextId,
     .kind = kText,
     .rect = {24, 121, 417, 86},
     .text = u"Click browse to select local destination path for storing converted OST file as PST\n\n\n"
             u"(This location can be a local drive or a network mapped folder and even it can be the same folder\n"
             u"where your OST file is stored).\n\n"
             u"Please make sure that you enough free disk space on the destination path to store the converted PST "
             u"file."},
    {.id = kShortDestinationTextId,
     .kind = kText,
     .rect = {24, 121, 417, 24},
     .text = u"Click browse to select destination path, where new PST file will be created after conversion.",
     .visible = false},
    {.id = kNormalScanId,
     .kind = kRadio,
     .rect = {36, 148, 260, 18},
     .text = u"Normal Scan (Recommended)",
     .art = {216, 217, 216, 216, 215},
     .visible = false},
    {.id = kSmartScanId,
     .kind = kRadio,
     .rect = {36, 170, 260, 18},
     .text = u"Smart Scan",
     .art = {220, 219, 220, 220, 264},
     .visible = false},
    {.id = kFieldLabelId,
     .kind = kText,
     .rect = {24, 82, 260, 12},
     .text = u"Select destination path :",
     .labels = kDestinationEditId},
    {.id = kDestinationEditId, .kind = kEdit, .rect = {24, 96, 338, 18}, .accessibleName = u"Select destination path"},
    {.id = kBrowseId,
     .kind = kButton,
     .rect = {369, 95, 72, 20},
     .text = u"Browse...",
     .key = u'R',
     .art = {214},
     .pictureSide = PictureSide::kLeft},
    kBackButton,
    {.id = kNextId,
     .kind = kButton,
     .rect = {392, 215, 52, 42},
     .text = u"Convert",
     .key = u'C',
     .art = {213},
     .enabled = false},
    kMenuButton,
    kMainButton,
};

constexpr ControlTemplate kProgressControls[] = {
    {.id = kHeadlineId, .kind = kHeading, .rect = {24, 68, 417, 14}, .text = u"Converting OST to PST, please wait..."},
    {.id = kAdviceId,
     .kind = kText,
     .rect = {24, 84, 417, 66},
     .text = u"\nIt is recommended that you close all other applications when conversion is in progress.\n\n"
             u"This will make it possible to provide all required memory access to the application,\n"
             u"which will help in making the conversion process smoother and faster."},
    {.id = kStageCaptionId, .kind = kText, .rect = {24, 158, 380, 12}, .text = u"Starting Conversion..."},
    {.id = kProgressBarId, .kind = kProgressBar, .rect = {24, 173, 380, 11}, .accessibleName = u"Progress"},
    {.id = kPercentageId, .kind = kText, .rect = {410, 174, 32, 12}, .text = u"0%"},
    {.id = kStoreLabelId,
     .kind = kText,
     .rect = {24, 83, 417, 12},
     .text = u"The new store:",
     .labels = kStorePathId,
     .visible = false},
    {.id = kStorePathId,
     .kind = kEdit,
     .rect = {24, 96, 417, 18},
     .accessibleName = u"The new store",
     .visible = false},
    {.id = kCancelId, .kind = kButton, .rect = {334, 215, 52, 42}, .text = u"Cancel", .key = u'C', .art = {228}},
    {.id = kFinishId,
     .kind = kButton,
     .rect = {392, 215, 52, 42},
     .text = u"Finish",
     .key = u'F',
     .art = {230},
     .enabled = false},
};

constexpr DialogTemplate kTemplates[] = {
    {kProgressTemplate, 465, 265, 211, kProgressControls},       {kStartTemplate, 465, 265, 207, kStartControls},
    {kDestinationTemplate, 465, 265, 211, kDestinationControls}, {kBrowseTemplate, 465, 265, 211, kBrowseControls},
    {kProfileTemplate, 589, 317, 211, kProfileControls},         {kFindTemplate, 465, 265, 211, kFindControls},
};

}  // namespace

const DialogTemplate& FindTemplate(TemplateId id) {
  return *std::find_if(std::begin(kTemplates), std::end(kTemplates),
                       [id](const DialogTemplate& candidate) { return candidate.id == id; });
}

}  // namespace velmora::resources
