// The pages of the wizard as tables: which controls they have, where, and with which texts and art.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace velmora::resources {

/// Numbers of the pages' templates.
enum TemplateId : std::uint16_t {
  kProgressTemplate = 103,
  kStartTemplate = 206,
  kDestinationTemplate = 207,
  kBrowseTemplate = 209,
  kProfileTemplate = 210,
  kFindTemplate = 211,
};

/// Numbers of the controls. One number may stand for different things on different pages.
enum ControlId : std::uint16_t {
  kFileListId = 1057,
  kHiddenStartButtonId = 1062,
  kBrowseStartId = 1063,  ///< on the start page
  kSearchStartId = 1064,  ///< on the start page
  kNormalScanId = 1063,   ///< on the destination page
  kSmartScanId = 1064,    ///< on the destination page
  kBrowseId = 1065,
  kDestinationEditId = 1066,
  kNextId = 1068,  ///< "Convert" on the destination page
  kMainId = 1069,
  kDestinationTextId = 1071,
  kSourceEditId = 1075,
  kBackId = 1076,
  kStorePathTextId = 1077,
  kProfileTextId = 1078,
  kDriveComboId = 1079,
  kFindId = 1080,
  kFindTextId = 1081,
  kFieldLabelId = 1085,
  kSearchStatusId = 1086,
  kHeadingId = 1089,
  kShortDestinationTextId = 1091,
  kPercentageId = 1093,
  kCancelId = 1095,
  kFinishId = 1096,
  kStageCaptionId = 1097,
  kHeadlineId = 1098,
  kProgressBarId = 1099,
  kAdviceId = 1100,
  kStoreLabelId = 1101,
  kStorePathId = 1102,
  kMenuButtonId = 32826,
};

enum class ControlKind {
  kText,         ///< transparent static
  kHeading,      ///< transparent static in bold
  kEdit,         ///< read-only edit
  kStatus,       ///< read-only edit without a frame
  kCombo,        ///< sorted, editable
  kList,         ///< report list with one column
  kButton,       ///< button with a picture and a text
  kImageButton,  ///< button made of images
  kRadio,        ///< skinned radio
  kProgressBar,
};

/// Where the picture of a kButton stands to its text.
enum class PictureSide { kAbove, kLeft };

/// In dialog units of the template's own size.
struct TemplateRect {
  int x = 0, y = 0, width = 0, height = 0;
};

struct ControlTemplate {
  std::uint16_t id = 0;
  ControlKind kind = ControlKind::kText;
  TemplateRect rect = {};
  std::u16string_view text = {};
  std::u16string_view accessibleName = {};  ///< empty: the text says it
  char16_t key = 0;                         ///< with Alt it works the control; 0: none, or the text's own
  std::array<std::uint16_t, 5> art = {};    ///< kButton: picture. kImageButton: normal, hover, pressed.
                                            ///< kRadio: normal, down, over, disabled, mask.
  PictureSide pictureSide = PictureSide::kAbove;
  std::uint16_t labels = 0;  ///< the control whose label this text is
  bool visible = true;
  bool enabled = true;
};

struct DialogTemplate {
  TemplateId id;
  int width, height;                          ///< in dialog units
  std::uint16_t art;                          ///< number of the background's bitmap
  std::span<const ControlTemplate> controls;  ///< in tab order
};

/// The template of a page.
const DialogTemplate& FindTemplate(TemplateId id);

}  // namespace velmora::resources
