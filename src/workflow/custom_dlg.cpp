#include "workflow/custom_dlg.h"

#include "controls/display_class.h"
#include "workflow/wizard_frame.h"

namespace velmora::workflow {

using namespace resources;

CCustomDlg::CCustomDlg(WizardFrame& frame) : Page(frame, kStartTemplate, controls::PageArtSize(frame.Display())) {
  // The list of the profile's files has no way in.
  delete Control<QWidget>(kHiddenStartButtonId);
  OnClick(kBrowseStartId, [this] {
    EndDialog();
    frame_.OpenBrowsePage();
  });
  OnClick(kSearchStartId, [this] {
    EndDialog();
    frame_.OpenFindPage();
  });
}

}  // namespace velmora::workflow
