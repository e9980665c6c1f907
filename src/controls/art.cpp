#include "controls/art.h"

#include <QFile>
#include <QPainter>

namespace velmora::controls {

void CGdiPlusBitmap::Draw(QPainter& painter, const QRectF& target) const {
  if (renderer_ != nullptr) renderer_->render(&painter, target);
}

QPixmap CGdiPlusBitmap::ToPixmap(QSize size, qreal scale) const {
  QPixmap pixmap(size * scale);
  pixmap.setDevicePixelRatio(scale);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  Draw(painter, QRectF(QPointF(0, 0), size));
  return pixmap;
}

bool CGdiPlusBitmapResource::Load(const QString& name, const char* kind) {
  renderer_.reset();
  bytes_.clear();
  QFile file(QStringLiteral(":/%1/%2.svg").arg(QLatin1String(kind), name));
  if (!file.open(QIODevice::ReadOnly)) return false;
  bytes_ = file.readAll();
  auto renderer = std::make_unique<QSvgRenderer>(bytes_);
  if (!renderer->isValid()) {
    bytes_.clear();
    return false;
  }
  renderer_ = std::move(renderer);
  return true;
}

}  // namespace velmora::controls
