#include "controls/art_button.h"

#include <QKeyEvent>
#include <QPainter>

namespace velmora::controls {

ArtButton::ArtButton(QWidget* parent) : QAbstractButton(parent) { setFocusPolicy(Qt::StrongFocus); }

void ArtButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  hovered_ = true;
  update();
}

void ArtButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  hovered_ = false;
  update();
}

void ArtButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    event->ignore();
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void ArtButton::changeEvent(QEvent* event) {
  QAbstractButton::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && !isEnabled()) hovered_ = false;
}

void ArtButton::DrawFocus(QPainter& painter, const QRectF& area, const QColor& colour) const {
  if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colour, 1.8));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(area, 6, 6);
}

}  // namespace velmora::controls
