#include "controls/transparent_static.h"

namespace velmora::controls {

CTransparentStatic::CTransparentStatic(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setAlignment(Qt::AlignLeft | Qt::AlignTop);
  setAutoFillBackground(false);
}

void CTransparentStatic::SetText(const QString& text) {
  setText(text);
  if (isVisible()) parentWidget()->repaint(geometry());
}

}  // namespace velmora::controls
