// Pictures of the program by their numbers. They are drawn anew for each size, so they are sharp on any
// display.
#pragma once

#include <QByteArray>
#include <QPixmap>
#include <QRectF>
#include <QString>
#include <QSvgRenderer>
#include <memory>

class QPainter;

namespace velmora::controls {

/// One picture. Empty until something is loaded.
class CGdiPlusBitmap {
 public:
  bool IsEmpty() const { return renderer_ == nullptr; }

  /// The picture's own size in pixels at 96 dots per inch; 0 by 0 while it is empty.
  QSize Size() const { return renderer_ != nullptr ? renderer_->defaultSize() : QSize(0, 0); }

  /// Draws the picture into a rectangle; nothing while it is empty.
  void Draw(QPainter& painter, const QRectF& target) const;

  /// The picture at a size in device-independent pixels, as sharp as `scale` device pixels each allow.
  QPixmap ToPixmap(QSize size, qreal scale) const;

 protected:
  std::unique_ptr<QSvgRenderer> renderer_;
};

/// A picture out of the program's resources.
class CGdiPlusBitmapResource : public CGdiPlusBitmap {
 public:
  /// Drops what is held, then loads the picture of that name and kind ("PNG" for images of buttons, "BITMAP"
  /// for pictures and backgrounds, "ICON"). Returns false, and stays empty, if there is none or it holds
  /// nothing.
  bool Load(const QString& name, const char* kind = "PNG");
  bool Load(int id, const char* kind = "PNG") { return Load(QString::number(id), kind); }

 private:
  QByteArray bytes_;  ///< kept while the picture lives
};

}  // namespace velmora::controls
