// The one window of the wizard.
#pragma once

#include <QPointer>
#include <QWidget>

#include "workflow/page.h"

namespace velmora::workflow {

/// The pages take turns in it, so it stays where the user put it. It is on the screen as long as a page is, and
/// has the size of its page.
class WizardWindow : public QWidget {
  Q_OBJECT

 public:
  WizardWindow();

  /// Takes the page over; the one before it has ended.
  void Show(Page* page);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void HideWithoutPage();

  QPointer<Page> page_;
};

}  // namespace velmora::workflow
