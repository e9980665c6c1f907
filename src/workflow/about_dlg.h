// The about window.
#pragma once

#include <QDialog>

#include "controls/art.h"
#include "workflow/base_folder.h"

namespace velmora::workflow {

class CMainFrame;

class CAboutDlg : public QDialog {
  Q_OBJECT

 public:
  /// Numbers of the controls.
  enum ControlId { kOkId = 2, kMakerId = 50051, kUninstallId = 50052, kPolicyId = 50057 };

  CAboutDlg(CMainFrame& frame, QWidget* owner);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddLinks();
  void OpenLink(int id);

  CMainFrame& frame_;
  Language language_;
  QString version_;
  controls::CGdiPlusBitmapResource logo_, mark_;
};

}  // namespace velmora::workflow
