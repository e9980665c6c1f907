#include "workflow/boxes.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>

#include "controls/art.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

constexpr QSize kPictureSize{40, 40};

/// The program's own picture in place of the one that the desktop, if there is any, has for the icon.
void ShowOwnPicture(QMessageBox& box, const char* name) {
  controls::CGdiPlusBitmapResource picture;
  auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"));
  if (label == nullptr || !picture.Load(QLatin1String(name), "ICON")) return;
  label->setPixmap(picture.ToPixmap(kPictureSize, box.devicePixelRatioF()));
}

void Fill(QMessageBox& box, text::TextView message, text::TextView title) {
  box.setTextFormat(Qt::PlainText);
  box.setWindowTitle(ToQt(title));
  box.setText(ToQt(message));
  if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setMinimumHeight(kPictureSize.height());
  }
}

/// Without the pictures that some styles put on the buttons.
int Run(QMessageBox& box) {
  for (QAbstractButton* button : box.buttons()) button->setIcon({});
  return box.exec();
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
      ShowOwnPicture(box, "information");
      break;
    case BoxIcon::Warning:
      box.setIcon(QMessageBox::Warning);
      ShowOwnPicture(box, "warning");
      break;
    case BoxIcon::Error:
      box.setIcon(QMessageBox::Critical);
      ShowOwnPicture(box, "error");
      break;
  }
  box.setStandardButtons(QMessageBox::Ok);
  Run(box);
}

bool AskYesNo(QWidget* owner, text::TextView question, text::TextView title) {
  QMessageBox box(owner);
  Fill(box, question, title);
  box.setIcon(QMessageBox::Information);
  ShowOwnPicture(box, "information");
  box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box.setDefaultButton(QMessageBox::Yes);
  box.setEscapeButton(QMessageBox::No);
  return Run(box) == QMessageBox::Yes;
}

}  // namespace velmora::workflow
