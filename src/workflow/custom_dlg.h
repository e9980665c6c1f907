// The start page: two large buttons.
#pragma once

#include "workflow/page.h"

namespace velmora::workflow {

class CCustomDlg : public Page {
  Q_OBJECT

 public:
  explicit CCustomDlg(WizardFrame& frame);
};

}  // namespace velmora::workflow
