// The page of a run.
#pragma once

#include "workflow/page.h"
#include "workflow/panes/run_message.h"

namespace velmora::workflow {

/// Shows how far the run is, lets the user stop it, and opens the folder of the new store at its end.
class CProgressDlg : public Page {
  Q_OBJECT

 public:
  explicit CProgressDlg(WizardFrame& frame);

  /// Stage, percentage and end of the run.
  void OnRunMessage(const RunMessage& message);

  /// The run has said why it cannot be completed.
  void OnFailure();

  void OnCloseBox() override;

 protected:
  /// Both leave the page at once; the run goes on without it.
  void OnOK() override { EndDialog(); }
  void OnCancel() override { EndDialog(); }

 private:
  void paintEvent(QPaintEvent* event) override;

  void SetText(std::uint16_t id, const QString& text);
  void OnPercentage(std::uint32_t percentage);
  void OnRunEnd();

  /// The run stands while the question is open; then it goes on, or is left for good.
  void StopRule();

  std::uint32_t lastPercentage_ = 0;
  text::Text store_;                             ///< path of the new store; empty until it is made
  controls::CGdiPlusBitmapResource endPicture_;  ///< empty until the end
};

}  // namespace velmora::workflow
