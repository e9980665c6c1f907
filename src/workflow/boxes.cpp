#include "workflow/boxes.h"

#include <QMessageBox>

#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

void Fill(QMessageBox& box, text::TextView message, text::TextView title) {
  box.setTextFormat(Qt::PlainText);
  box.setWindowTitle(ToQt(title));
  box.setText(ToQt(message));
}

}  // namespace

void ShowBox(QWidget* owner, text::TextView message, text::TextView title, BoxIcon icon) {
  QMessageBox box(owner);
  Fill(box, message, title);
  switch (icon) {
    case BoxIcon::None:
      break;
    case BoxIcon::Information:
      box.setIcon(QMessageBox::Information);
      break;
    case BoxIcon::Warning:
      box.setIcon(QMessageBox::Warning);
      break;
    case BoxIcon::Error:
      box.setIcon(QMessageBox::Critical);
      break;
  }
  box.setStandardButtons(QMessageBox::Ok);
  box.exec();
}

bool AskYesNo(QWidget* owner, text::TextView question, text::TextView title) {
  QMessageBox box(owner);
  Fill(box, question, title);
  box.setIcon(QMessageBox::Information);
  box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box.setDefaultButton(QMessageBox::Yes);
  box.setEscapeButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

}  // namespace velmora::workflow
