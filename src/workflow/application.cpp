#include "workflow/application.h"

#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/mode_notice.h"
#include "workflow/outlook_checks.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

using namespace resources;

void Refuse(StringId message, StringId title, BoxIcon icon) {
  ShowBox(nullptr, LoadString(message), LoadString(title), icon);
}

}  // namespace

CVMREPAIRMAILApp::CVMREPAIRMAILApp(Services services) : services_(std::move(services)) {}

bool CVMREPAIRMAILApp::InitInstance() {
  if (!services_.registerWindowClass()) {
    ShowBox(nullptr, kWindowClassFailure, LoadString(kProductTitle), BoxIcon::None);
    return false;
  }
  if (!services_.startControls()) {
    ShowBox(nullptr, LoadString(kOleFailure), LoadString(kProductTitle), BoxIcon::None);
    return false;
  }
  if (const auto lock = services_.takeInstanceLock(); !lock) {
    if (lock.error().kind == platform::FailureKind::kExists) {
      Refuse(kSecondInstance, kErrorTitle, BoxIcon::Error);
      services_.hardExit();
      return false;
    }
    Refuse(kLaunchFailed, kErrorTitle, BoxIcon::Error);
    return false;
  }
  if (!IsOutlookInstalled(*services_.registry)) {
    Refuse(kOutlookMissing, kErrorTitle, BoxIcon::Error);
    return false;
  }
  if (RequireOutlookNotRunning()) return false;
  CheckOutlook2000Mode(true);
  if (CheckOutlook2000Mode(false)) {
    Refuse(kInternetModeRefused, kProductTitle, BoxIcon::Information);
    return false;
  }
  frame_ = std::make_unique<CMainFrame>(services_);
  return frame_->Create();
}

bool CVMREPAIRMAILApp::RequireOutlookNotRunning() {
  if (!IsOutlookRunning(services_)) return false;
  Refuse(kOutlookRunning, kWarningTitle, BoxIcon::Warning);
  services_.hardExit();
  return true;
}

bool CVMREPAIRMAILApp::CheckOutlook2000Mode(bool showNotice) {
  if (!IsOutlook2000InInternetMode(*services_.registry)) return false;
  if (showNotice) ShowModeNotice(services_);
  return true;
}

void CVMREPAIRMAILApp::ExitInstance() {
  constexpr std::chrono::milliseconds kWait{300};
  if (frame_ != nullptr) frame_->EndWorkers();
  services_.sleep(kWait);
  services_.hardExit();
}

}  // namespace velmora::workflow
