// The numbered texts of the program, in English only. A text is used to the letter wherever it appears.
#pragma once

#include <cstdint>
#include <string_view>

namespace velmora::resources {

/// Numbers of the texts that the program asks for by name.
enum StringId : std::uint16_t {
  kOleFailure = 100,  ///< not in the table: its box is empty
  kPageTitle = 128,
  kFindCaption = 133,
  kStatusIndicator = 136,  ///< not in the table: the pane of the status bar starts empty
  kStopCaption = 139,
  kColumnFrom = 140,
  kColumnTo = 141,
  kColumnSubject = 142,
  kColumnDate = 143,  ///< not in the table
  kProductTitle = 152,
  kStageOpening = 153,
  kStageProfile = 154,
  kErrorTitle = 156,
  kStageValidating = 157,
  kStageNodeScan = 159,  ///< not in the table: the caption goes blank during that step
  kStageFolderStructure = 160,
  kStageFolderNames = 161,
  kStageFolderItems = 162,
  kStageMailItems = 163,
  kStageClosing = 164,
  kProcessAborted = 166,
  kStopQuestion = 170,
  kConfirmationTitle = 171,
  kExitQuestion = 172,
  kNotEnoughSpace = 173,
  kInformationTitle = 174,
  kConfirm = 176,
  kIgnore = 177,
  kRemovableDrive = 180,
  kOutlookRunning = 181,
  kModeNoticeHeading = 182,
  kModeNoticeMode = 183,
  kAcceptTerms = 184,
  kRefuseTerms = 185,
  kModeNoticeAutomatic = 187,
  kModeNoticeChoice = 188,
  kModeNoticeManual = 189,
  kSecondInstance = 191,  ///< not in the table: its box is empty
  kLaunchFailed = 192,
  kInternetModeRefused = 194,
  kWarningTitle = 195,
  kOutlookMissing = 200,
  kSearchingStores = 202,
  kColumnFileName = 210,
};

/// The text of a number, or the empty text if the table does not define it. The prompts of the commands
/// are under the commands' own numbers.
std::u16string_view LoadString(std::uint32_t id);

}  // namespace velmora::resources
