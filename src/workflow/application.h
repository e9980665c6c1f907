// The program from its start to its end.
#pragma once

#include <memory>

#include "workflow/main_frame.h"
#include "workflow/services.h"

namespace velmora::workflow {

/// Brings the program up in a fixed order, refuses to run where it cannot, and makes the hidden frame, which
/// opens the wizard.
class CVMREPAIRMAILApp {
 public:
  explicit CVMREPAIRMAILApp(Services services);

  /// All checks in their order, each with its box. False: the program ends without a page.
  bool InitInstance();

  /// The hard exit, after its waits. Returns in tests alone.
  void ExitInstance();

  /// Shows the box for a running Outlook and ends the process if Outlook runs; false otherwise.
  bool RequireOutlookNotRunning();

  /// Whether Outlook 2000 is in internet mode; with `showNotice` the user may change that first.
  bool CheckOutlook2000Mode(bool showNotice);

  /// Null until InitInstance has made it.
  CMainFrame* MainFrame() { return frame_.get(); }

 private:
  Services services_;
  std::unique_ptr<CMainFrame> frame_;
};

}  // namespace velmora::workflow
