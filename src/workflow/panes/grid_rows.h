// The rows of the grid: categories, each with its fields below it.
#pragma once

#include <QAbstractItemModel>

#include "workflow/panes/fill.h"

namespace velmora::workflow {

/// Two columns, caption and value. A category is a row at the top with a caption alone.
class GridRows : public QAbstractItemModel {
  Q_OBJECT

 public:
  using QAbstractItemModel::QAbstractItemModel;

  void Add(std::vector<Category> categories);
  void Clear();

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& = {}) const override { return 2; }
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<Category> categories_;
};

}  // namespace velmora::workflow
