// The rows of a list of files.
#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QStringList>
#include <deque>

namespace velmora::controls {

/// Rows of one text each, under one column. A row is put at either end at no cost for the others.
class FileRows : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  void SetTitle(const QString& title) { title_ = title; }

  /// Of all rows, in pixels; 0: as the view wants it.
  void SetRowHeight(int height) { rowHeight_ = height; }

  /// Puts each text at row 0 in turn, so that the last of them stands on top.
  void PutOnTop(const QStringList& texts);
  void Append(const QStringList& texts);
  void Clear();

  int Count() const { return int(rows_.size()); }

  /// The text of a row; empty for a row that is not there.
  QString TextAt(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString title_;
  int rowHeight_ = 0;
  std::deque<QString> rows_;
};

}  // namespace velmora::controls
