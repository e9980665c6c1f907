#include "workflow/progress_dlg.h"

#include <QAbstractButton>
#include <QPainter>
#include <QProgressBar>
#include <filesystem>

#include "controls/display_class.h"
#include "controls/transparent_static.h"
#include "resources/string_table.h"
#include "resources/texts.h"
#include "workflow/boxes.h"
#include "workflow/main_frame.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

using namespace resources;

CProgressDlg::CProgressDlg(CMainFrame& frame)
    : Page(frame, kProgressTemplate, controls::ProgressArtSize(frame.DpiX, frame.DpiY)) {
  connect(Control<QAbstractButton>(kCancelId), &QAbstractButton::clicked, this, &CProgressDlg::StopRule);
  connect(Control<QAbstractButton>(kFinishId), &QAbstractButton::clicked, this, [this] { EndDialog(); });
}

void CProgressDlg::SetText(std::uint16_t id, const QString& text) {
  Control<controls::CTransparentStatic>(id)->SetText(text);
}

void CProgressDlg::OnRunMessage(const engine::RunMessage& message) {
  switch (message.code) {
    case engine::MSG_PROGRESS:
      OnPercentage(message.number);
      break;
    case engine::MSG_STAGE:
      SetText(kStageCaptionId, ToQt(StageCaption(message.detail == 1 ? 9 : message.number)));
      break;
    case engine::MSG_DONE:
      OnRunEnd();
      break;
    default:
      break;
  }
}

void CProgressDlg::OnPercentage(std::uint32_t percentage) {
  if (percentage > 100) return;
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
  endPicture_.Load(229, "BITMAP");
  update();
  const std::filesystem::path store = text::ToFileName(frame_.State().destinationPath);
  frame_.Machine().openWithShell(store.parent_path().string());
}

void CProgressDlg::paintEvent(QPaintEvent* event) {
  Page::paintEvent(event);
  // In the place of advice and bar, as large as the page's class makes it.
  const qreal scale = qreal(height()) / 430;
  const QSizeF size = QSizeF(endPicture_.Size()) * scale;
  QPainter painter(this);
  endPicture_.Draw(painter, {QPointF((width() - size.width()) / 2, 158 * scale), size});
}

void CProgressDlg::StopRule() {
  const std::shared_ptr<Worker> worker = frame_.WorkerThread();
  worker->Hold();
  if (AskYesNo(this, LoadString(kStopQuestion), LoadString(kConfirmationTitle))) {
    worker->Stop();
    EndDialog();
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
