#include "workflow/panes/item_rows.h"

#include <iterator>

#include "controls/plain_tip.h"
#include "workflow/panes/image_list.h"
#include "workflow/panes/whole_value.h"

namespace velmora::workflow {
namespace {

constexpr int kListImages = 197;
constexpr std::size_t kItemImage = 1;
constexpr std::size_t kAttachmentImage = 2;

}  // namespace

ItemRows::ItemRows(QObject* parent) : QAbstractTableModel(parent) {
  const std::vector<QIcon> images = LoadImageList(kListImages);
  if (images.size() <= kAttachmentImage) return;
  itemImage_ = images[kItemImage];
  attachmentImage_ = images[kAttachmentImage];
}

void ItemRows::SetTitles(const QStringList& titles) {
  beginResetModel();
  titles_ = titles;
  endResetModel();
}

void ItemRows::Append(std::vector<Row> rows) {
  if (rows.empty()) return;
  beginInsertRows({}, rowCount(), rowCount() + int(rows.size()) - 1);
  std::move(rows.begin(), rows.end(), std::back_inserter(rows_));
  endInsertRows();
}

void ItemRows::SetText(int row, Column column, const QString& text) {
  if (row < 0 || row >= rowCount()) return;
  rows_[std::size_t(row)].texts[column] = text;
  emit dataChanged(index(row, column), index(row, column));
}

void ItemRows::MarkAttachments(int row) {
  if (row < 0 || row >= rowCount()) return;
  rows_[std::size_t(row)].hasAttachments = true;
  emit dataChanged(index(row, kFrom), index(row, kFrom));
}

void ItemRows::Clear() {
  beginResetModel();
  rows_ = {};
  endResetModel();
}

int ItemRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(rows_.size()); }

int ItemRows::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(titles_.size()); }

QVariant ItemRows::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = rows_[std::size_t(index.row())];
  switch (role) {
    case Qt::DisplayRole:
      return OneLine(row.texts[std::size_t(index.column())]);
    case Qt::ToolTipRole:
      return controls::PlainTip(row.texts[std::size_t(index.column())]);
    case kWholeValueRole:
      return row.texts[std::size_t(index.column())];
    case Qt::DecorationRole:
      if (index.column() != kFrom) return {};
      return row.hasAttachments ? attachmentImage_ : itemImage_;
    case Qt::AccessibleDescriptionRole:
      return row.hasAttachments ? QStringLiteral("has attachments") : QString();
    default:
      return {};
  }
}

QVariant ItemRows::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return titles_.value(section);
}

}  // namespace velmora::workflow
