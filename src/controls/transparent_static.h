// Text over the art of a page.
#pragma once

#include <QLabel>

namespace velmora::controls {

/// Plain text, wrapped, with nothing behind it: the page shows through.
class CTransparentStatic : public QLabel {
  Q_OBJECT

 public:
  explicit CTransparentStatic(QWidget* parent);

  /// Sets the text and has the page paint its art and the new text at once.
  void SetText(const QString& text);
};

}  // namespace velmora::controls
