#include "workflow/repair_profile_dlg.h"

#include <QAbstractButton>

#include "controls/display_class.h"
#include "controls/file_rows.h"
#include "controls/tx_list_ctrl.h"
#include "resources/texts.h"
#include "workflow/chosen_source.h"
#include "workflow/file_search.h"
#include "workflow/main_frame.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

using namespace resources;
using controls::CTXListCtrl;

CRepairProfileDlg::CRepairProfileDlg(CMainFrame& frame) : Page(frame, kProfileTemplate, controls::kProfileArtSize) {
  auto* list = Control<CTXListCtrl>(kFileListId);
  list->SetHint(ToQt(kProfileListHint));
  connect(list, &CTXListCtrl::RowChosen, this,
          [this, list](int row) { ChooseSource(frame_, row, list->Rows().TextAt(row), *Control<QWidget>(kNextId)); });
  for (const std::filesystem::path& folder : frame.Machine().profileFolders()) {
    for (const char* mask : {"*.PST", "*.OST"}) {
      SearchFolder(folder, mask,
                   {.onFile = [list](const std::filesystem::path& file) { list->Rows().Append({PathToQt(file)}); }});
    }
  }
  for (const std::uint16_t id : {kBackId, kMainId}) {
    connect(Control<QAbstractButton>(id), &QAbstractButton::clicked, this, [this] {
      EndDialog();
      frame_.OpenStartPage();
    });
  }
  connect(Control<QAbstractButton>(kNextId), &QAbstractButton::clicked, this, [this] {
    EndDialog();
    frame_.OpenDestinationPage(kProfileTemplate);
  });
}

}  // namespace velmora::workflow
