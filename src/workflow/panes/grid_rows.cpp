#include "workflow/panes/grid_rows.h"

#include <algorithm>
#include <iterator>

#include "controls/plain_tip.h"
#include "workflow/panes/whole_value.h"
#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

/// Id of the indexes of categories; a field has the number of its category behind it.
constexpr quintptr kCategoryId = 0;

QVariant TextFor(int role, const QString& whole) {
  switch (role) {
    case Qt::DisplayRole:
      return OneLine(whole);
    case Qt::ToolTipRole:
      return controls::PlainTip(whole);
    case kWholeValueRole:
      return whole;
    default:
      return {};
  }
}

}  // namespace

void GridRows::Add(std::vector<Category> categories) {
  if (categories.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + int(categories.size()) - 1);
  std::move(categories.begin(), categories.end(), std::back_inserter(categories_));
  endInsertRows();
}

void GridRows::Clear() {
  beginResetModel();
  categories_ = {};
  endResetModel();
}

QModelIndex GridRows::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : kCategoryId);
}

QModelIndex GridRows::parent(const QModelIndex& index) const {
  if (!index.isValid() || index.internalId() == kCategoryId) return {};
  return createIndex(int(index.internalId()) - 1, 0, kCategoryId);
}

int GridRows::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return int(categories_.size());
  if (parent.internalId() != kCategoryId || parent.column() != 0) return 0;
  return int(categories_[std::size_t(parent.row())].rows.size());
}

QVariant GridRows::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  if (index.internalId() == kCategoryId) {
    const Category& category = categories_[std::size_t(index.row())];
    if (index.column() != 0) return {};
    return TextFor(role, category.caption);
  }
  const FilledRow& row = categories_[index.internalId() - 1].rows[std::size_t(index.row())];
  if (index.column() == 0)
    return role == Qt::DisplayRole || role == kWholeValueRole ? ToQt(row.row->label) : QVariant();
  return TextFor(role, row.value);
}

QVariant GridRows::headerData(int, Qt::Orientation, int) const { return {}; }

}  // namespace velmora::workflow
