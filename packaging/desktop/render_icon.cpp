// velmora-render-icon: a drawing as a square picture of a given size.
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("Usage: velmora-render-icon DRAWING.svg SIZE PICTURE.png\n", stderr);
    return 64;
  }
  QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
  const int size = QByteArray(argv[2]).toInt();
  if (!drawing.isValid() || size < 1) {
    std::fprintf(stderr, "velmora-render-icon: %s cannot be drawn in size %s\n", argv[1], argv[2]);
    return 65;
  }
  QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  drawing.render(&painter);
  painter.end();
  return picture.save(QString::fromLocal8Bit(argv[3]), "PNG") ? 0 : 73;
}
