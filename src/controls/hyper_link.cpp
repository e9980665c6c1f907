#include "controls/hyper_link.h"

#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace velmora::controls {
namespace {

constexpr int kLeaveDelay = 300;  // milliseconds
const QColor kLinkColour("#1F5BE3");

}  // namespace

CHyperLink::CHyperLink(int id, const QString& text, QWidget* parent) : QWidget(parent), id_(id), text_(text) {
  normal_ = font();
  normal_.setFamilies({QStringLiteral("Trebuchet MS"), font().family()});
  underlined_ = normal_;
  underlined_.setUnderline(true);
  setFont(normal_);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::PointingHandCursor);
  setAccessibleName(text);
}

QSize CHyperLink::sizeHint() const { return QFontMetrics(underlined_).size(Qt::TextSingleLine, text_) + QSize(4, 4); }

bool CHyperLink::PointerIsOver() const { return rect().contains(mapFromGlobal(QCursor::pos())); }

void CHyperLink::SetHovered(bool hovered) {
  if (hovered_ == hovered) return;
  hovered_ = hovered;
  update();
}

void CHyperLink::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setFont(hovered_ ? underlined_ : normal_);
  painter.setPen(isEnabled() ? kLinkColour : palette().color(QPalette::Disabled, QPalette::WindowText));
  painter.drawText(rect().adjusted(2, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text_);
  if (!hasFocus()) return;
  painter.setPen(QPen(kLinkColour, 1, Qt::DotLine));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CHyperLink::mouseMoveEvent(QMouseEvent*) {
  if (isEnabled()) SetHovered(true);
}

void CHyperLink::leaveEvent(QEvent*) {
  // A tip that covers the link makes the mouse leave it, though the pointer has not moved.
  if (PointerIsOver()) {
    leaveTimer_.start(kLeaveDelay, this);
  } else {
    SetHovered(false);
  }
}

void CHyperLink::timerEvent(QTimerEvent* event) {
  if (event->timerId() != leaveTimer_.timerId()) return QWidget::timerEvent(event);
  if (pressed_ || PointerIsOver()) return;
  leaveTimer_.stop();
  SetHovered(false);
}

void CHyperLink::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressed_ = true;
  pressArea_ = QRect(mapToGlobal(QPoint(0, 0)), size());
}

void CHyperLink::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !pressed_) return;
  pressed_ = false;
  const bool inside = pressArea_.contains(event->globalPosition().toPoint());
  SetHovered(inside);
  update();
  if (isEnabled() && inside) emit Clicked(id_);
}

void CHyperLink::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    emit Clicked(id_);
  } else {
    QWidget::keyPressEvent(event);
  }
}

void CHyperLink::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  update();
}

void CHyperLink::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  update();
}

}  // namespace velmora::controls
