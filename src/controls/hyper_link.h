// The link of the about window.
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace velmora::controls {

/// A text that is underlined while the mouse is over it and tells when it is clicked.
class CHyperLink : public QWidget {
  Q_OBJECT

 public:
  CHyperLink(int id, const QString& text, QWidget* parent);

  bool IsHovered() const { return hovered_; }
  QSize sizeHint() const override;

 signals:
  /// Pressed and let go over the link, or worked by the keyboard.
  void Clicked(int id);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  bool PointerIsOver() const;
  void SetHovered(bool hovered);

  int id_;
  QString text_;
  QFont normal_, underlined_;
  bool hovered_ = false;
  bool pressed_ = false;
  QRect pressArea_;  ///< on the screen
  QBasicTimer leaveTimer_;
};

}  // namespace velmora::controls
