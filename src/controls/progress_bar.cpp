#include "controls/progress_bar.h"

#include <QPainter>
#include <QPainterPath>

namespace velmora::controls {

ProgressBar::ProgressBar(QWidget* parent) : QProgressBar(parent) {
  setRange(0, 100);
  setValue(0);
  setTextVisible(false);
}

void ProgressBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF groove = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  const qreal radius = groove.height() / 2;
  QPainterPath shape;
  shape.addRoundedRect(groove, radius, radius);
  painter.fillPath(shape, QColor("#E1E9F4"));

  QLinearGradient colour(groove.topLeft(), groove.topRight());
  colour.setColorAt(0, QColor("#3D7BFF"));
  colour.setColorAt(1, QColor("#12B5A6"));
  painter.setClipPath(shape);
  // Never less than a full round end.
  QRectF done = groove;
  done.setWidth(2 * radius + (groove.width() - 2 * radius) * value() / 100);
  QPainterPath filled;
  filled.addRoundedRect(done, radius, radius);
  if (value() > 0) painter.fillPath(filled, colour);
  painter.setClipping(false);
  painter.setPen(QPen(QColor("#C8D5E8"), 1));
  painter.drawPath(shape);
}

}  // namespace velmora::controls
