// The report list of the search and profile pages.
#pragma once

#include <QTreeView>

namespace velmora::controls {

class FileRows;

/// A list with one column, striped rows, and a hint in its middle while it is empty. At most one row is chosen:
/// the one that is highlighted.
class CTXListCtrl : public QTreeView {
  Q_OBJECT

 public:
  explicit CTXListCtrl(QWidget* parent);

  FileRows& Rows() { return *rows_; }
  void SetTitle(const QString& title);
  void SetHint(const QString& hint);

  /// Background of a row: white for odd rows, a pale blue for even ones, the first row being row 0.
  static QColor StripeOf(int row);

 signals:
  /// Another row is highlighted now; -1: none is.
  void RowChosen(int row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void TellChoice();

  FileRows* rows_;
  QString hint_;
};

}  // namespace velmora::controls
