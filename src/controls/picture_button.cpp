#include "controls/picture_button.h"

#include <QPainter>

namespace velmora::controls {
namespace {

struct Face {
  QColor fill, edge;
};

const Face kNormalFace{"#FFFFFF", "#C8D5E8"};
const Face kHoverFace{"#EDF3FF", "#6E9BF5"};
const Face kPressedFace{"#D9E6FF", "#1F5BE3"};
const Face kDisabledFace{"#F4F7FB", "#DFE7F1"};
const QColor kText("#14284A");
const QColor kDisabledText("#7688A6");
const QColor kFocus("#1F5BE3");

}  // namespace

PictureButton::PictureButton(QWidget* parent) : ArtButton(parent) {}

void PictureButton::SetPicture(int id) {
  id_ = id;
  picture_.Load(id, "BITMAP");
  update();
}

void PictureButton::SetRelation(Relation relation) {
  relation_ = relation;
  update();
}

void PictureButton::SetTextMargin(int margin) {
  textMargin_ = margin;
  update();
}

QSize PictureButton::sizeHint() const {
  const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text());
  return relation_ == Relation::Above ? QSize(words.width() + 20, words.height() + 40)
                                      : QSize(words.width() + 48, words.height() + 14);
}

void PictureButton::paintEvent(QPaintEvent*) {
  const Face& face = !isEnabled() ? kDisabledFace : isDown() ? kPressedFace : IsHovered() ? kHoverFace : kNormalFace;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(face.edge, 1.2));
  painter.setBrush(face.fill);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.8, 0.8, -0.8, -0.8), 8, 8);

  const int line = fontMetrics().height();
  QRectF place;
  QRect words;
  int align = 0;
  if (relation_ == Relation::Above) {
    const qreal side = std::min<qreal>(height() - line - textMargin_ - 14, 1.7 * line);
    words = QRect(0, height() - textMargin_ - line - 3, width(), line);
    place = QRectF((width() - side) / 2, (words.top() - side) / 2 + 2, side, side);
    align = Qt::AlignHCenter;
  } else {
    const qreal side = std::min<qreal>(height() - 10, 1.4 * line);
    const int text = fontMetrics().size(Qt::TextShowMnemonic, this->text()).width();
    const qreal start = std::max<qreal>(6, (width() - side - 7 - text) / 2);
    place = QRectF(start, (height() - side) / 2, side, side);
    words = QRect(int(start + side + 7), 0, text + 4, height());
    align = Qt::AlignVCenter;
  }
  painter.setOpacity(isEnabled() ? 1.0 : 0.38);
  picture_.Draw(painter, place);
  painter.setOpacity(1.0);
  painter.setPen(isEnabled() ? kText : kDisabledText);
  painter.drawText(words, align | Qt::TextSingleLine | Qt::TextShowMnemonic, text());
  DrawFocus(painter, QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5), kFocus);
}

}  // namespace velmora::controls
