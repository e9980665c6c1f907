#include "workflow/panes/result_panes.h"

#include <QStackedWidget>

namespace velmora::workflow {
namespace {

FinishedStore::Opener OpenerOf(conversion::RunState& state, conversion::OutputFactory makeOutput) {
  return [&state, makeOutput = std::move(makeOutput)](text::TextView path) {
    // What a run is still writing is not read: a session shows a store as it was when it was opened.
    if (!state.treeFilling) throw output::OutputFailure(output::ResultCode::MAPI_E_NOT_FOUND);
    auto session = makeOutput().library->CreateRDOSession();
    session->Logon(state.profileName);
    session->Stores()->OpenPSTStore(path);
    return session;
  };
}

}  // namespace

ResultPanes::ResultPanes(QWidget* parent, conversion::RunState& state, const conversion::COutLook& outLook,
                         conversion::OutputFactory makeOutput)
    : QSplitter(Qt::Horizontal, parent),
      state_(state),
      outLook_(outLook),
      store_(std::make_shared<FinishedStore>(state.previewSession, OpenerOf(state, std::move(makeOutput)))) {
  const SendToPane send = [this](const RunMessage& message) { OnMessage(message); };
  setObjectName(QStringLiteral("59648"));
  folders_ = new CFormViewLeft(this, {state, store_, send, [this] { return ListBusy(); }});
  inner_ = new QSplitter(Qt::Vertical, this);
  upper_ = new QStackedWidget(inner_);
  list_ = new CListViewRight(upper_, store_, send);
  grid_ = new CGridView(upper_, store_);
  upper_->addWidget(list_);
  upper_->addWidget(grid_);
  body_ = new CDisplayBody(inner_, store_, *list_);
  inner_->addWidget(upper_);
  inner_->addWidget(body_);
  addWidget(folders_);
  addWidget(inner_);
  setSizes({245, 755});
  inner_->setSizes({400, 300});
  setStretchFactor(0, 0);
  setStretchFactor(1, 1);
  setChildrenCollapsible(false);
  folders_->hide();
  body_->hide();
}

void ResultPanes::BeginRun() {
  folders_->show();
  body_->show();
  if (!list_->HasColumns()) list_->BuildColumns();
  list_->StopListing();
  state_.treeFilling = false;
  folders_->Clear();
  OnMessage({.code = kClearGridMessage});
  OnMessage({.code = kSwapPaneMessage, .number = 1});
  OnMessage({.code = MSG_CLEAR_LIST});
  OnMessage({.code = MSG_CLEAR_BODY});
  body_->ReleaseFolder();
  store_->Close();
}

void ResultPanes::EndRun() {
  body_->ReleaseFolder();
  store_->LetGo();
}

void ResultPanes::OnMessage(const RunMessage& message) {
  switch (message.code) {
    case MSG_STAGE:
      if (message.number == kClosingStage && outLook_.logEnabled && outLook_.Session()) {
        OnMessage({.code = kWriteSummaryMessage});
      }
      break;
    case kSwapPaneMessage:
      SwapPane(message.number == 1);
      break;
    case kWriteSummaryMessage:
      if (outLook_.Session()) folders_->WriteSummary(*outLook_.Session());
      break;
    case MSG_ADD_FOLDER:
    case kRenewSelectionMessage:
      folders_->OnMessage(message);
      break;
    case MSG_LIST_FIELD:
    case MSG_LIST_ATTACHMENT:
    case MSG_CLEAR_LIST:
    case kListFolderMessage:
      list_->OnMessage(message);
      break;
    case MSG_CLEAR_BODY:
    case kShowBodyMessage:
      body_->OnMessage(message);
      break;
    default:
      grid_->OnMessage(message);
      break;
  }
}

bool ResultPanes::ShowsGrid() const { return upper_->currentWidget() == grid_; }

void ResultPanes::SwapPane(bool toList) {
  if (toList != ShowsGrid()) return;
  // The pane that goes takes what it holds along, the list also the body that it showed.
  if (toList) {
    grid_->OnMessage({.code = kClearGridMessage});
    if (!list_->HasColumns()) list_->BuildColumns();
    upper_->setCurrentWidget(list_);
  } else {
    list_->StopListing();
    list_->OnMessage({.code = MSG_CLEAR_LIST});
    body_->OnMessage({.code = MSG_CLEAR_BODY});
    upper_->setCurrentWidget(grid_);
  }
}

}  // namespace velmora::workflow
