#include "workflow/boxes.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <algorithm>

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

/// What a title bar holds beside the title: the icon and the buttons, each about as wide as a line is high.
int TitleBarWidth(const QMessageBox& box) {
  const QFontMetrics letters(box.font());
  return letters.horizontalAdvance(box.windowTitle()) + 8 * letters.height();
}

void Fill(QMessageBox& box, text::TextView message, text::TextView title) {
  box.setTextFormat(Qt::PlainText);
  box.setWindowTitle(ToQt(title));
  box.setWindowIcon(ProgramIcon());
  box.setText(ToQt(message));
  // Paths stand in some messages.
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // As high as the picture beside it, for a single line, but never less than its text asks for: a minimum that is
    // set takes the place of the label's own.
    label->ensurePolished();
    label->setMinimumHeight(std::max(kPictureSize.height(), label->sizeHint().height()));
  }
}

/// Without the pictures that some styles put on the buttons, and no narrower than the title asks for.
int Run(QMessageBox& box) {
  for (QAbstractButton* button : box.buttons()) button->setIcon({});
  if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
    grid->addItem(new QSpacerItem(TitleBarWidth(box), 0), grid->rowCount(), 0, 1, grid->columnCount());
  }
  return box.exec();
}

}  // namespace

QIcon ProgramIcon() {
  controls::CGdiPlusBitmapResource icon;
  icon.Load(128, "ICON");
  return icon.ToPixmap({64, 64}, 2);
}

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
