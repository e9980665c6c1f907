// The bar of a run.
#pragma once

#include <QProgressBar>

namespace velmora::controls {

class ProgressBar : public QProgressBar {
  Q_OBJECT

 public:
  /// From 0 to 100, at 0.
  explicit ProgressBar(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace velmora::controls
