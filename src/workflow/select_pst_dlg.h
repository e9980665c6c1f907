// The page on which the user browses for the source.
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

}  // namespace velmora::workflow
