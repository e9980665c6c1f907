#include "resources/texts.h"

#include "resources/string_table.h"

namespace velmora::resources {

std::u16string_view LinkFailureText(int code) {
  switch (code) {
    case 3:
      return u"The specified path was not found.";
    case 5:
      return u"The operating system denied access to the specified file.";
    case 8:
      return u"There was not enough memory to complete the operation.";
    case 11:
      return u"The file is invalid (it's a non-Win32 file).";
    case 26:
      return u"A sharing violation occurred.";
    case 27:
      return u"The file name association is incomplete or invalid.";
    case 28:
      return u"The DDE transaction could not be completed because the request timed out.";
    case 29:
      return u"The DDE transaction failed.";
    case 30:
      return u"The DDE transaction could not be completed because other DDE transactions were being processed.";
    case 32:
      return u"The specified DLL was not found.";
    default:
      return {};
  }
}

std::u16string_view StageCaption(std::uint32_t stage) {
  constexpr StringId kCaptions[] = {kStageOpening,     kStageValidating,      kStageProfile,
                                    kStageNodeScan,    kStageFolderStructure, kStageFolderNames,
                                    kStageFolderItems, kStageMailItems,       kStageClosing};
  return stage >= 1 && stage <= std::size(kCaptions) ? LoadString(kCaptions[stage - 1]) : kStageOther;
}

}  // namespace velmora::resources
