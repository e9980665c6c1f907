// The pages on which the user picks the source: by browsing, and from the files of a profile.
#pragma once

#include "workflow/page.h"

namespace velmora::workflow {

class CSelectPstDlg : public Page {
  Q_OBJECT

 public:
  explicit CSelectPstDlg(WizardFrame& frame);

 private:
  void OnBrowse();
  void OnSourceChanged(const QString& text);
};

/// Lists the data files of the default Outlook folder. No button of the start page leads here.
class CRepairProfileDlg : public Page {
  Q_OBJECT

 public:
  explicit CRepairProfileDlg(WizardFrame& frame);
};

}  // namespace velmora::workflow
