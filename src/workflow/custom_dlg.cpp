#include "workflow/custom_dlg.h"

#include <QAbstractButton>

#include "controls/display_class.h"
#include "workflow/main_frame.h"

namespace velmora::workflow {

using namespace resources;

CCustomDlg::CCustomDlg(CMainFrame& frame) : Page(frame, kStartTemplate, controls::PageArtSize(frame.Display())) {
  // The list of the profile's files has no way in.
  delete Control<QWidget>(kHiddenStartButtonId);
  connect(Control<QAbstractButton>(kBrowseStartId), &QAbstractButton::clicked, this, [this] {
    EndDialog();
    frame_.OpenBrowsePage();
  });
  connect(Control<QAbstractButton>(kSearchStartId), &QAbstractButton::clicked, this, [this] {
    EndDialog();
    frame_.OpenFindPage();
  });
}

}  // namespace velmora::workflow
