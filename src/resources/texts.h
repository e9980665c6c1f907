// Texts of boxes and dialogs that have no number in the string table. Used to the letter.
#pragma once

#include <cstdint>
#include <string_view>

namespace velmora::resources {

// Start-up.
inline constexpr std::u16string_view kWindowClassFailure = u"GetClassInfoEx failed";
inline constexpr std::u16string_view kModeNoticeTitle = u"Please read carefully";
inline constexpr std::u16string_view kTermsTitle = u"Disclaimer";
inline constexpr std::u16string_view kTermsOfModeChange =
    u"The change of the mail support rewrites a setting of Outlook 2000 on this computer. It affects every user "
    u"and every profile of this computer, and it stays after this program has ended.\r\n\r\n"
    u"Before you accept, close Outlook, make a copy of your data files, and have the Office 2000 CD or the path "
    u"at hand from which Office 2000 was installed: Outlook may ask for it at its next start.\r\n\r\n"
    u"The change is made on your own decision. It can be taken back in Outlook under Tools, Options, Mail "
    u"Delivery, Reconfigure Mail Support. No liability is taken for profiles, accounts or data that no longer "
    u"work as before.\r\n\r\n"
    u"With \"I Accept\" Outlook is started and the mode is set to Corporate or Workgroup. With \"I do not "
    u"accept\" nothing is changed.";

// Commands of the frame.
inline constexpr std::u16string_view kHelpFileMissing = u"Unable to locate Help File";
inline constexpr std::u16string_view kInformation = u"Information";

// Source pages.
inline constexpr std::u16string_view kOpenFilter = u"OST files (*.ost) | *.ost||";
inline constexpr std::u16string_view kOpenDefaultExtension = u"Select a .ost file";
inline constexpr std::u16string_view kSearchBlocksBack =
    u"An operation is in progress;\nPlease cancel the current\nProcess to go back to the main screen.";
inline constexpr std::u16string_view kSearchBlocksClose =
    u"An operation is in progress;\nPlease cancel the current\nProcess to close this wizard.";
inline constexpr std::u16string_view kDrivesFailed = u"Drive Info retrieval failed ";
inline constexpr std::u16string_view kDrivesFailedTitle = u"ERROR";
inline constexpr std::u16string_view kFileNotFound = u"File Not Found";
inline constexpr std::u16string_view kSearchMask = u"*.OST";
inline constexpr std::u16string_view kSearchListHint = u"The OST files that are found will be listed here.";
inline constexpr std::u16string_view kProfileListHint = u"There is no data file in the default Outlook folder.";

// Destination page.
inline constexpr std::u16string_view kFolderDialogTitle = u"Select destination path to save converted file.";

// Progress page.
inline constexpr std::u16string_view kStageOther = u"Processing Wait...";
inline constexpr std::u16string_view kConversionCompleted = u"Conversion Completed.";
inline constexpr std::u16string_view kFileConversionCompleted = u"OST file conversion completed.";
inline constexpr std::u16string_view kConversionNotCompleted = u"OST file conversion not completed.";

// About window.
inline constexpr std::u16string_view kButtonCreationFailed = u"Failed to create OK button";
inline constexpr std::u16string_view kLinkCreationFailed = u"Hyper-link creation fails";
inline constexpr std::u16string_view kUnknownVersion = u"1.0.0.8";

// The desktop.
inline constexpr std::u16string_view kNothingOpens = u"No program was found to open:";

/// Why a link could not be opened, by the code of the failure (below 33). Empty for 0, 2 and 31, for which
/// the browser itself is started instead, and for any code that has no text.
std::u16string_view LinkFailureText(int code);

/// Caption of a stage of the run on the progress page: 1 to 9, and one text for any other number.
std::u16string_view StageCaption(std::uint32_t stage);

}  // namespace velmora::resources
