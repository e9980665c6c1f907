// What all buttons of the pages have in common.
#pragma once

#include <QAbstractButton>

namespace velmora::controls {

/// A button that knows whether the mouse is over it, shows the focus that the keyboard gives, and leaves
/// Enter to its page: on no page does a button take Enter.
class ArtButton : public QAbstractButton {
  Q_OBJECT

 public:
  bool IsHovered() const { return hovered_; }

 protected:
  explicit ArtButton(QWidget* parent);

  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

  /// A line around `area` while the button has the focus, once the keyboard has moved it in this window. Its colour
  /// must stand out from what lies under it.
  void DrawFocus(QPainter& painter, const QRectF& area, const QColor& colour) const;

 private:
  bool hovered_ = false;
};

}  // namespace velmora::controls
