// The notice about Outlook 2000 in internet-only mode, and the terms of changing that.
#pragma once

#include <QDialog>

#include "workflow/services.h"

namespace velmora::workflow {

/// Tells about the mode and asks whether to change it.
class CInformationDlg : public QDialog {
  Q_OBJECT

 public:
  CInformationDlg();

  /// Whether the user chose "Confirm"; known once the dialog has ended.
  bool IsConfirmed() const { return result() == Accepted; }
};

/// Shows the terms and asks whether they are accepted.
class CDisclaimerDlg : public QDialog {
  Q_OBJECT

 public:
  CDisclaimerDlg();
};

/// Runs the notice and, when it is confirmed, the terms; when they are accepted, the mode is changed.
void ShowModeNotice(const Services& services);

}  // namespace velmora::workflow
