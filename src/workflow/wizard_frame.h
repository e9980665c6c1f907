// What the pages know of the frame that they belong to.
#pragma once

#include <QPoint>
#include <functional>
#include <memory>
#include <string>

#include "controls/display_class.h"
#include "conversion/run_state.h"
#include "resources/dialog_templates.h"

class QWidget;

namespace velmora::workflow {

class BaseFolder;
class Worker;
struct Services;

/// The frame makes the pages and the window that they stand in; pages and windows reach back to it through this
/// alone.
class WizardFrame {
 public:
  // Pages.
  virtual void OpenStartPage() = 0;
  virtual void OpenBrowsePage() = 0;
  virtual void OpenFindPage() = 0;
  virtual void OpenProfilePage() = 0;
  virtual void OpenDestinationPage(resources::TemplateId previous) = 0;

  /// The page in the window, or null.
  virtual QWidget* CurrentPage() const = 0;

  // The run.
  virtual void StartConversion() = 0;
  virtual const std::shared_ptr<Worker>& WorkerThread() const = 0;

  /// What is behind the close box of the frame: asks unless `skipExitPrompt` is set, then ends the process.
  virtual void CloseRule() = 0;

  /// Opens the help file; a box over `owner` tells when it cannot be.
  virtual void OpenHelp(QWidget* owner) = 0;

  /// Hands a file, a folder or an address to the desktop. `onFailure` gets the code if nothing opens it, at once or a
  /// little later.
  virtual void OpenWithShell(const std::string& target, std::function<void(int code)> onFailure) = 0;

  /// A box over `owner` with the reason of a code, and what could not be opened.
  virtual void TellShellFailure(QWidget* owner, int code, const std::string& target, text::TextView title) = 0;

  virtual conversion::RunState& State() = 0;
  virtual const Services& Machine() const = 0;
  virtual const BaseFolder& Base() const = 0;

  /// Dots per inch of the display.
  virtual QPoint Dpi() const = 0;
  controls::DisplayClass Display() const { return controls::DisplayClassOf(Dpi().x(), Dpi().y()); }

 protected:
  ~WizardFrame() = default;
};

}  // namespace velmora::workflow
