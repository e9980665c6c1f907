// Panels that show that something goes on.
#pragma once

#include <QFrame>

namespace velmora::workflow {

/// Stands over the list while a folder is read.
class CDlgLoading : public QFrame {
  Q_OBJECT

 public:
  explicit CDlgLoading(QWidget* parent);
};

/// Goes with the tree pane. Nothing brings it on the screen.
class CFindDlg : public QFrame {
  Q_OBJECT

 public:
  explicit CFindDlg(QWidget* parent);
};

}  // namespace velmora::workflow
