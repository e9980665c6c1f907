#include "workflow/main_frame.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>

#include "conversion/notices.h"
#include "platform/shell.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/custom2_dlg.h"
#include "workflow/custom_dlg.h"
#include "workflow/find_pst_dlg.h"
#include "workflow/progress_dlg.h"
#include "workflow/qt_text.h"
#include "workflow/select_pst_dlg.h"

namespace velmora::workflow {

using namespace resources;

CMainFrame::CMainFrame(Services services)
    : services_(std::move(services)),
      base_(services_.programFile),
      engine_(state_, services_.makeOutput),
      link_([this](const engine::Event& event) { OnEvent(event); }) {
  panes_ = new ResultPanes(this, state_, engine_, services_.makeOutput);
  setCentralWidget(panes_);
  state_.run.observer = &link_;
  state_.closeWindow = [this] { link_.CallAndWait([this] { CloseRule(); }); };
}

CMainFrame::~CMainFrame() {
  EndWorkers();
  delete page_;
  delete takeCentralWidget();  // the panes read what this object holds
}

bool CMainFrame::Create() {
  setObjectName(QStringLiteral("VMREPAIR_OSTPST"));
  setWindowTitle(ToQt(LoadString(kProductTitle)));
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowMinimizeButtonHint | Qt::WindowSystemMenuHint);
  setGeometry(0, 0, 465, 265);
  if (const QScreen* screen = QGuiApplication::primaryScreen()) {
    DpiX = qRound(screen->logicalDotsPerInchX());
    DpiY = qRound(screen->logicalDotsPerInchY());
  }
  StartUpdateHelper();
  BuildBars();
  QMetaObject::invokeMethod(
      this, [this] { OnFrameMessage(kShowStartPageMessage); }, Qt::QueuedConnection);
  return true;
}

void CMainFrame::ShowPage(Page* page) {
  page_ = page;
  window_.Show(page);
}

void CMainFrame::ShowStartPage() {
  hide();
  state_.run.runEnded = false;
  if (!panes_->ListBusy()) OpenStartPage();
}

void CMainFrame::OpenStartPage() { ShowPage(new CCustomDlg(*this)); }
void CMainFrame::OpenBrowsePage() { ShowPage(new CSelectPstDlg(*this)); }
void CMainFrame::OpenFindPage() { ShowPage(new CFindPstDlg(*this)); }
void CMainFrame::OpenProfilePage() { ShowPage(new CRepairProfileDlg(*this)); }
void CMainFrame::OpenDestinationPage(TemplateId previous) { ShowPage(new CCustom2Dlg(*this, previous)); }

void CMainFrame::StartConversion() {
  if (!services_.hasEnoughFreeSpace(state_.destinationPath, state_.sourcePath)) {
    // No page opens again: the message asks the user to start anew.
    ShowBox(nullptr, LoadString(kNotEnoughSpace), LoadString(kInformationTitle), BoxIcon::Information);
    return;
  }
  if (state_.destinationPath.empty() || state_.destinationPath == u"cancel") return;

  panes_->BeginRun();
  progressDialog = new CProgressDlg(*this);
  connect(progressDialog, &Page::Ended, this, &CMainFrame::OnProgressPageEnded);
  if (workerThread_ != nullptr) leftWorkers_.push_back(workerThread_);
  workerThread_ = std::make_shared<Worker>(std::move(workerThread_), state_.run.control, link_,
                                           [this] { services_.runWorker(engine_, state_); });
  ShowPage(progressDialog);
}

void CMainFrame::OnProgressPageEnded() {
  progressDialog = nullptr;
  panes_->EndRun();
  if (!state_.skipExitPrompt) ShowStartPage();
}

void CMainFrame::OnEvent(const engine::Event& event) {
  if (const auto* notice = std::get_if<engine::Notice>(&event)) OnNotice(*notice);
  if (const auto* known = std::get_if<engine::FoldersKnown>(&event)) panes_->OnFoldersKnown(*known);
  if (const auto message = MessageOf(event)) OnRunMessage(*message);
}

void CMainFrame::OnRunMessage(const RunMessage& message) {
  switch (message.code) {
    case MSG_ERROR_NOTICE:
      OnFrameMessage(message.code);
      break;
    case MSG_PROGRESS:
    case MSG_STAGE:
    case MSG_DONE:
      // Without a page there is no window to tell.
      if (progressDialog != nullptr) progressDialog->OnRunMessage(message);
      [[fallthrough]];
    default:
      panes_->OnMessage(message);
  }
}

void CMainFrame::OnNotice(const engine::Notice& notice) {
  const conversion::NoticeText said = conversion::TextOf(notice);
  if (said.isError || notice.kind == engine::NoticeKind::kRegistering) OnRunMessage({.code = MSG_ERROR_NOTICE});
  text::Text whole = said.text;
  // What it was that stood in the way of the folder.
  if (notice.kind == engine::NoticeKind::kNoOutputFolder) {
    whole += u"\n\n" + text::FromUtf8(TextOf(notice.cause));
  }
  ShowBox(progressDialog, whole, said.title, said.isError ? BoxIcon::Error : BoxIcon::Information);
  if (progressDialog != nullptr) progressDialog->OnFailure();
}

int CMainFrame::OnFrameMessage(std::uint32_t code, std::uint32_t number) {
  switch (code) {
    case kStartConversionMessage:
      StartConversion();
      return 0;
    case kSwapPaneMessage:
      panes_->OnMessage({code, number, 0, {}});
      return 0;
    case kShowStartPageMessage:
      ShowStartPage();
      return 0;
    default:
      return code == MSG_ERROR_NOTICE ? 1 : 0;
  }
}

void CMainFrame::EndWorkers() {
  std::vector<std::shared_ptr<Worker>> left;
  for (const std::weak_ptr<Worker>& worker : leftWorkers_) left.push_back(worker.lock());
  left.push_back(workerThread_);
  std::erase(left, nullptr);
  for (const auto& worker : left) worker->Stop();
  for (const auto& worker : left) worker->Join();
}

void CMainFrame::CloseRule() {
  services_.sleep(std::chrono::milliseconds(100));
  if (!state_.skipExitPrompt && !AskYesNo(page_, LoadString(kExitQuestion), LoadString(kProductTitle))) return;
  WithSavedBars([this](QSettings& bars) { bars.setValue(QStringLiteral("CommandBars"), saveState()); });
  EndWorkers();
  services_.hardExit();
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  event->ignore();
  CloseRule();
}

}  // namespace velmora::workflow
