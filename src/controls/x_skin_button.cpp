#include "controls/x_skin_button.h"

#include <QPainter>

namespace velmora::controls {
namespace {

constexpr int kTextStart = 25;
constexpr int kFocusMargin = 2;

/// Black becomes opaque, white transparent.
QImage ToAlpha(const QImage& mask) {
  QImage alpha = mask.convertToFormat(QImage::Format_Grayscale8);
  alpha.invertPixels();
  return alpha;
}

}  // namespace

CxSkinButton::CxSkinButton(QWidget* parent)
    : ArtButton(parent), textColour_(palette().color(QPalette::Active, QPalette::ButtonText)) {
  setCheckable(true);
  setAutoExclusive(true);
}

void CxSkinButton::SetSkin(int normal, int down, int over, int disabled, int mask) {
  const auto set = [](Picture& picture, int id) {
    picture.id = id;
    picture.art.Load(id, "BITMAP");
  };
  set(normal_, normal);
  set(down_, down);
  set(over_, over);
  set(disabled_, disabled);
  set(mask_, mask);
  update();
}

const CxSkinButton::Picture& CxSkinButton::Shown() const {
  if (!isEnabled()) return disabled_;
  if (isDown() || isChecked()) return down_;
  return IsHovered() ? over_ : normal_;
}

int CxSkinButton::ShownPicture() const { return Shown().id; }

QRect CxSkinButton::TextRect() const {
  return rect().adjusted(kTextStart + kFocusMargin, 0, -2 - kFocusMargin, 0);
}

void CxSkinButton::paintEvent(QPaintEvent*) {
  const auto layer = [&](const Picture& picture) {
    QImage image(size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.art.Draw(painter, rect());
    return image;
  };
  QImage face = layer(Shown());
  if (!mask_.art.IsEmpty()) {
    QImage mask = layer(mask_);
    mask.setDevicePixelRatio(1);
    const qreal scale = face.devicePixelRatio();
    face.setDevicePixelRatio(1);
    QImage kept(face.size(), QImage::Format_ARGB32_Premultiplied);
    kept.fill(Qt::black);
    kept.setAlphaChannel(ToAlpha(mask));
    {
      QPainter painter(&face);
      painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
      painter.drawImage(0, 0, kept);
    }
    face.setDevicePixelRatio(scale);
  }

  QPainter painter(this);
  painter.drawImage(0, 0, face);
  constexpr int kFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextShowMnemonic;
  if (!isEnabled()) {
    painter.setPen(Qt::white);
    painter.drawText(TextRect().translated(1, 1), kFlags, text());
    painter.setPen(palette().color(QPalette::Disabled, QPalette::ButtonText));
    painter.drawText(TextRect(), kFlags, text());
    return;
  }
  const bool pressed = isDown() || isChecked();
  painter.setPen(textColour_);
  painter.drawText(pressed ? TextRect().translated(1, 1) : TextRect(), kFlags, text());
  DrawFocus(painter, QRectF(rect()).adjusted(kFocusMargin, kFocusMargin, -kFocusMargin, -kFocusMargin), textColour_);
}

}  // namespace velmora::controls
