// The about window.
#pragma once

#include <QDialog>

#include "controls/art.h"
#include "workflow/base_folder.h"

namespace velmora::workflow {

class WizardFrame;

class CAboutDlg : public QDialog {
  Q_OBJECT

 public:
  /// Numbers of the controls.
  enum ControlId { kOkId = 2, kMakerId = 50051, kUninstallId = 50052, kPolicyId = 50057 };

  CAboutDlg(WizardFrame& frame, QWidget* owner);

  QFont HeadingFont() const;

 protected:
  /// Enter is "OK", but on a link.
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddLinks();
  void OpenLink(int id);

  /// From pixels of a display of 96 dots per inch.
  int Scaled(int pixels) const { return qRound(pixels * scale_); }
  QRect Scaled(int x, int y, int width, int height) const {
    return {Scaled(x), Scaled(y), Scaled(width), Scaled(height)};
  }

  WizardFrame& frame_;
  const qreal scale_;
  Language language_;
  QString version_;
  controls::CGdiPlusBitmapResource logo_, mark_;
};

}  // namespace velmora::workflow
