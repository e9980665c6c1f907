// The rows of the item list.
#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <QStringList>
#include <array>
#include <vector>

namespace velmora::workflow {

/// Rows in store order. A row costs its texts and some 100 bytes.
class ItemRows : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kFrom, kTo, kSubject, kDate, kColumns };

  struct Row {
    /// Whole, to be copied; a cell shows the beginning.
    std::array<QString, kColumns> texts;
    bool hasAttachments = false;
  };

  explicit ItemRows(QObject* parent);

  /// The columns exist from here on.
  void SetTitles(const QStringList& titles);

  void Append(std::vector<Row> rows);
  void SetText(int row, Column column, const QString& text);
  void MarkAttachments(int row);
  void Clear();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QStringList titles_;
  std::vector<Row> rows_;
  QIcon itemImage_, attachmentImage_;
};

}  // namespace velmora::workflow
