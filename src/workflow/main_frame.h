// The hub of the program: owns the engine and the worker, starts and ends runs, opens the pages.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QSettings>
#include <functional>
#include <memory>
#include <vector>

#include "conversion/out_look.h"
#include "conversion/run_state.h"
#include "workflow/base_folder.h"
#include "workflow/page.h"
#include "workflow/panes/result_panes.h"
#include "workflow/services.h"
#include "workflow/wizard_frame.h"
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
class CMainFrame : public QMainWindow, public WizardFrame {
  Q_OBJECT

 public:
  explicit CMainFrame(Services services);
  ~CMainFrame() override;

  /// Builds bars and panes, looks for updates, and posts itself the message that opens the start page.
  bool Create();

  // Pages.
  void ShowStartPage();
  void OpenStartPage() override;
  void OpenBrowsePage() override;
  void OpenFindPage() override;
  void OpenProfilePage() override;
  void OpenDestinationPage(resources::TemplateId previous) override;
  Page* CurrentPage() const override { return page_; }

  // The run.
  void StartConversion() override;
  const std::shared_ptr<Worker>& WorkerThread() const override { return workerThread_; }

  /// Stops every worker that is left and waits for it, so that every store is sealed.
  void EndWorkers();

  void CloseRule() override;

  // Commands.
  void OnCommand(std::uint16_t id);
  bool IsCommandEnabled(std::uint16_t id) const;

  /// A message to the frame; its answer is 1 for those that are taken and do nothing.
  int OnFrameMessage(std::uint32_t code, std::uint32_t number = 0);

  void OpenHelp(QWidget* owner) override;
  void OpenWithShell(const std::string& target, std::function<void(int code)> onFailure) override;
  void TellShellFailure(QWidget* owner, int code, const std::string& target, text::TextView title) override;

  ResultPanes& Panes() { return *panes_; }
  conversion::RunState& State() override { return state_; }
  const Services& Machine() const override { return services_; }
  const BaseFolder& Base() const override { return base_; }
  QPoint Dpi() const override { return {DpiX, DpiY}; }

  int DpiX = 96, DpiY = 96;  ///< of the display; read once, when the frame is made

  CProgressDlg* progressDialog = nullptr;  ///< set during a run, unless its page was left

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildBars();
  void ShowPage(Page* page);
  void OnEvent(const engine::Event& event);
  void OnRunMessage(const RunMessage& message);
  void OnNotice(const engine::Notice& notice);
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
