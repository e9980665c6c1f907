// The page on which the user picks the destination, and from which the run starts.
#pragma once

#include <QUrl>

#include "workflow/page.h"

namespace velmora::workflow {

class CCustom2Dlg : public Page {
  Q_OBJECT

 public:
  /// `previous` is the page that "Back" leads to.
  CCustom2Dlg(WizardFrame& frame, resources::TemplateId previous);

  /// A folder was picked in the dialog. One that is no folder of this machine has no path, and empties the
  /// edit.
  void OnFolderPicked(const QUrl& folder);

 protected:
  /// Leaves no page behind: the program goes on without a window.
  void OnCancel() override { EndDialog(); }

 private:
  void OnBrowse();
  void OnBack();
  void OnConvert();

  resources::TemplateId previous_;
};

}  // namespace velmora::workflow
