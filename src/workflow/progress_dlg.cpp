#include "workflow/progress_dlg.h"

#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QProgressBar>
#include <filesystem>

#include "controls/display_class.h"
#include "controls/transparent_static.h"
#include "platform/path_text.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/qt_text.h"
#include "workflow/wizard_frame.h"
#include "workflow/worker.h"

namespace velmora::workflow {

using namespace resources;

CProgressDlg::CProgressDlg(WizardFrame& frame)
    : Page(frame, kProgressTemplate, controls::ProgressArtSize(frame.Dpi().x(), frame.Dpi().y())) {
  OnClick(kCancelId, [this] { StopRule(); });
  OnClick(kFinishId, [this] { EndDialog(); });
}

void CProgressDlg::SetText(std::uint16_t id, const QString& text) {
  Control<controls::CTransparentStatic>(id)->SetText(text);
}

void CProgressDlg::OnRunMessage(const RunMessage& message) {
  switch (message.code) {
    case MSG_PROGRESS:
      OnPercentage(message.number);
      break;
    case MSG_STAGE:
      // The set-up, the third stage, names the store; after it the worker does not write there.
      if (message.number > 3) store_ = frame_.State().destinationPath;
      SetText(kStageCaptionId, ToQt(StageCaption(message.detail == 1 ? kClosingStage : message.number)));
      break;
    case MSG_DONE:
      OnRunEnd();
      break;
    default:
      break;
  }
}

void CProgressDlg::OnPercentage(std::uint32_t percentage) {
  if (percentage > kLastPercentage) return;
  auto* bar = Control<QProgressBar>(kProgressBarId);
  bar->setValue(int(percentage));
  if (percentage != lastPercentage_) {
    const QString text = QStringLiteral("%1%").arg(percentage);
    SetText(kPercentageId, text);
    bar->setWindowTitle(text);
  }
  lastPercentage_ = percentage;
}

void CProgressDlg::OnRunEnd() {
  SetText(kStageCaptionId, ToQt(kConversionCompleted));
  Control<QWidget>(kCancelId)->setEnabled(false);
  for (const std::uint16_t id : {kCancelId, kProgressBarId, kPercentageId}) Control<QWidget>(id)->hide();
  Control<QWidget>(kFinishId)->setEnabled(true);
  SetText(kHeadlineId, ToQt(kFileConversionCompleted));
  Control<QWidget>(kHeadlineId)->show();
  Control<QWidget>(kStageCaptionId)->hide();
  Control<QWidget>(kAdviceId)->hide();
  Control<QWidget>(kStoreLabelId)->show();
  auto* path = Control<QLineEdit>(kStorePathId);
  path->setText(ToQt(frame_.State().destinationPath));
  path->setCursorPosition(0);
  path->show();
  Control<QWidget>(kFinishId)->setFocus();
  endPicture_.Load(229, "BITMAP");
  update();
  const std::string folder = platform::BytesOfPath(platform::PathOf(frame_.State().destinationPath).parent_path());
  frame_.OpenWithShell(folder, [&frame = frame_, folder, self = QPointer<CProgressDlg>(this)](int code) {
    frame.TellShellFailure(self, code, folder, LoadString(kInformationTitle));
  });
}

void CProgressDlg::OnFailure() { SetText(kHeadlineId, ToQt(kConversionNotCompleted)); }

void CProgressDlg::paintEvent(QPaintEvent* event) {
  Page::paintEvent(event);
  // In the place of the bar, as large as the page's class makes it.
  const qreal scale = qreal(height()) / 430;
  const QSizeF size = QSizeF(endPicture_.Size()) * scale;
  QPainter painter(this);
  endPicture_.Draw(painter, {QPointF((width() - size.width()) / 2, 187 * scale), size});
}

void CProgressDlg::StopRule() {
  const std::shared_ptr<Worker> worker = frame_.WorkerThread();
  worker->Hold();
  if (AskYesNo(this, LoadString(kStopQuestion), LoadString(kConfirmationTitle))) {
    WizardFrame& frame = frame_;
    const text::Text store = store_;
    worker->Stop();
    EndDialog();
    if (!store.empty()) {
      ShowBox(frame.CurrentPage(), text::Text(LoadString(kProcessAborted)) + store, LoadString(kInformationTitle),
              BoxIcon::Information);
    }
  } else {
    worker->Resume();
  }
}

void CProgressDlg::OnCloseBox() {
  if (frame_.State().run.runEnded) {
    AskExit();
  } else {
    StopRule();
  }
}

}  // namespace velmora::workflow
