#include "workflow/wizard_window.h"

#include <QCloseEvent>

#include "resources/string_table.h"
#include "workflow/boxes.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {

WizardWindow::WizardWindow()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint) {
  setObjectName(QStringLiteral("VMREPAIR_OSTPST"));
  setWindowTitle(ToQt(resources::LoadString(resources::kPageTitle)));
  setWindowIcon(ProgramIcon());
}

void WizardWindow::Show(Page* page) {
  page_ = page;
  // The next page, if there is one, comes before the events are looked at again: the window does not flicker.
  connect(page, &Page::Ended, this, &WizardWindow::HideWithoutPage, Qt::QueuedConnection);
  connect(page, &QObject::destroyed, this, &WizardWindow::HideWithoutPage, Qt::QueuedConnection);
  // All pages have one title; for rules of window managers they differ by their role.
  setWindowRole(QString::fromLatin1(page->metaObject()->className()).section(QStringLiteral("::"), -1));
  page->setParent(this);
  page->move(0, 0);
  setFixedSize(page->size());
  page->show();
  show();
  raise();
  activateWindow();
  // Onto the first control, as in a window that has just come up.
  page->setFocus();
  focusNextPrevChild(true);
}

void WizardWindow::HideWithoutPage() {
  if (page_ == nullptr || page_->isHidden()) hide();
}

void WizardWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (page_ != nullptr) page_->OnCloseBox();
}

void WizardWindow::keyPressEvent(QKeyEvent* event) {
  // Comes here when nothing on the page has the focus.
  if (page_ != nullptr) page_->keyPressEvent(event);
}

}  // namespace velmora::workflow
