#include "controls/x_cmd_btn.h"

#include <QPainter>

namespace velmora::controls {
namespace {

struct FixedSize {
  QSize image, medium, large;
};

constexpr FixedSize kFixedSizes[] = {
    {{218, 88}, {218 + 37, 88 + 22}, {327, 130}},
    {{44, 44}, {55, 55}, {66, 66}},
};

}  // namespace

CXCmdBtn::CXCmdBtn(QWidget* parent) : ArtButton(parent) { setCursor(Qt::PointingHandCursor); }

bool CXCmdBtn::SetImages(int normal, int hover, int pressed) {
  const auto set = [](Image& image, int id) {
    image.id = id;
    return image.art.Load(id);
  };
  const bool hasNormal = set(normal_, normal), hasHover = set(hover_, hover), hasPressed = set(pressed_, pressed);
  update();
  return hasNormal && hasHover && hasPressed;
}

void CXCmdBtn::SetDisplayClass(DisplayClass display) {
  display_ = display;
  update();
}

void CXCmdBtn::SetImageOnly(bool imageOnly) {
  imageOnly_ = imageOnly;
  update();
}

const CXCmdBtn::Image& CXCmdBtn::Shown() const {
  if (isDown()) return pressed_;
  return IsHovered() ? hover_ : normal_;
}

int CXCmdBtn::ShownImage() const { return Shown().id; }

QSize CXCmdBtn::DrawnSize() const {
  const QSize own = Shown().art.Size();
  if (display_ == DisplayClass::Natural) return own;
  for (const FixedSize& fixed : kFixedSizes) {
    if (fixed.image == own) return display_ == DisplayClass::Medium ? fixed.medium : fixed.large;
  }
  return size();
}

QMarginsF CXCmdBtn::FocusMargins() const {
  constexpr QSize kWithRim{218, 88};
  if (Shown().art.Size() != kWithRim) return {3.5, 3.5, 3.5, 3.5};
  const qreal across = qreal(DrawnSize().width()) / kWithRim.width();
  const qreal down = qreal(DrawnSize().height()) / kWithRim.height();
  return {8.5 * across, 8.5 * down, 8.5 * across, 12.5 * down};
}

QSize CXCmdBtn::sizeHint() const { return DrawnSize(); }

void CXCmdBtn::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRectF place(QPointF(0, 0), DrawnSize());
  Shown().art.Draw(painter, place);
  if (!imageOnly_) {
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine | Qt::TextShowMnemonic, text());
  }
  DrawFocus(painter, place.marginsRemoved(FocusMargins()), Qt::white);
}

}  // namespace velmora::controls
