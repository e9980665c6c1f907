#include "workflow/repair_profile_dlg.h"

#include "controls/display_class.h"
#include "controls/file_rows.h"
#include "controls/tx_list_ctrl.h"
#include "resources/texts.h"
#include "workflow/file_search.h"
#include "workflow/qt_text.h"
#include "workflow/services.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {

using namespace resources;
using controls::CTXListCtrl;

CRepairProfileDlg::CRepairProfileDlg(WizardFrame& frame) : Page(frame, kProfileTemplate, controls::kProfileArtSize) {
  auto* list = Control<CTXListCtrl>(kFileListId);
  list->SetHint(ToQt(kProfileListHint));
  connect(list, &CTXListCtrl::RowChosen, this, [this, list](int row) { ChooseSource(row, list->Rows().TextAt(row)); });
  for (const std::filesystem::path& folder : frame.Machine().profileFolders()) {
    for (const char* mask : {"*.PST", "*.OST"}) {
      SearchFolder(folder, mask,
                   {.onFile = [list](const std::filesystem::path& file) { list->Rows().Append({PathToQt(file)}); }});
    }
  }
  for (const std::uint16_t id : {kBackId, kMainId}) OnClick(id, [this] { LeadToStart(); });
  OnClick(kNextId, [this] { LeadToDestination(kProfileTemplate); });
}

}  // namespace velmora::workflow
