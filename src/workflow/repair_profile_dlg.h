// The page that lists the data files of the default Outlook folder. No button of the start page leads here.
#pragma once

#include "workflow/page.h"

namespace velmora::workflow {

class CRepairProfileDlg : public Page {
  Q_OBJECT

 public:
  explicit CRepairProfileDlg(WizardFrame& frame);
};

}  // namespace velmora::workflow
