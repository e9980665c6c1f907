// The hub of the program: owns the engine and the worker, starts and ends runs, opens the pages.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QSettings>
#include <functional>
#include <memory>
#include <vector>

#include "controls/display_class.h"
#include "conversion/out_look.h"
#include "conversion/run_state.h"
#include "resources/dialog_templates.h"
#include "workflow/base_folder.h"
#include "workflow/page.h"
#include "workflow/panes/result_panes.h"
#include "workflow/services.h"
#include "workflow/wizard_window.h"
#include "workflow/worker.h"

namespace velmora::workflow {

class CProgressDlg;

/// Messages that the frame takes beside those of a run.
enum FrameMessage : std::uint32_t {
  kStartConversionMessage = 32784,
  kShowStartPageMessage = 32897,
};

/// Never shown: it exists hidden from the first to the last moment of the process. The user works in the
/// pages; the panes inside the frame get their messages all the same.
class CMainFrame : public QMainWindow {
  Q_OBJECT

 public:
  explicit CMainFrame(Services services);
  ~CMainFrame() override;

  /// Builds bars and panes, looks for updates, and posts itself the message that opens the start page.
  bool Create();

  // Pages.
  void ShowStartPage();
  void OpenStartPage();
  void OpenBrowsePage();
  void OpenFindPage();
  void OpenProfilePage();
  void OpenDestinationPage(resources::TemplateId previous);

  /// The page in the window, or null.
  Page* CurrentPage() const { return page_; }

  // The run.
  void StartConversion();
  bool HasEnoughFreeSpace(text::TextView destination) const;
  const std::shared_ptr<Worker>& WorkerThread() const { return workerThread_; }

  /// Stops every worker that is left and waits for it, so that every store is sealed.
  void EndWorkers();

  /// What is behind the close box of the frame: asks unless `skipExitPrompt` is set, then ends the process.
  void CloseRule();

  // Commands.
  void OnCommand(std::uint16_t id);
  bool IsCommandEnabled(std::uint16_t id) const;

  /// A message to the frame; its answer is 1 for those that are taken and do nothing.
  int OnFrameMessage(std::uint32_t code, std::uint32_t number = 0);

  /// Opens the help file; a box over `owner` tells when it cannot be.
  void OpenHelp(QWidget* owner);

  /// Hands a file, a folder or an address to the desktop. `onFailure` gets the code if nothing opens it, at once or a
  /// little later.
  void OpenWithShell(const std::string& target, std::function<void(int code)> onFailure);

  /// A box over `owner` with the reason of a code, and what could not be opened.
  void TellShellFailure(QWidget* owner, int code, const std::string& target, text::TextView title);

  ResultPanes& Panes() { return *panes_; }
  conversion::RunState& State() { return state_; }
  const Services& Machine() const { return services_; }
  const BaseFolder& Base() const { return base_; }
  controls::DisplayClass Display() const { return controls::DisplayClassOf(DpiX, DpiY); }

  text::Text SourceExtension;  ///< of the file that was browsed for, in lower case
  int DpiX = 96, DpiY = 96;    ///< of the display; read once, when the frame is made

  CProgressDlg* progressDialog = nullptr;  ///< set during a run, unless its page was left

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildBars();
  void ShowPage(Page* page);
  void OnRunMessage(const engine::RunMessage& message);
  void OnBox(engine::BoxKind kind, text::TextView title, text::TextView message);
  void OnProgressPageEnded();
  void OpenWebPage(const char* path);
  void StartUpdateHelper();

  /// Calls `use` with what is kept of the bars, beside the program's other settings.
  void WithSavedBars(const std::function<void(QSettings&)>& use) const;

  Services services_;
  BaseFolder base_;
  conversion::RunState state_;
  conversion::COutLook engine_;
  WorkerLink link_;
  std::shared_ptr<Worker> workerThread_;            ///< of the last run; stays set after it
  std::vector<std::weak_ptr<Worker>> leftWorkers_;  ///< of runs whose page was left
  ResultPanes* panes_;
  QPointer<Page> page_;
  WizardWindow window_;
};

}  // namespace velmora::workflow
