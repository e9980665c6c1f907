#include "controls/file_rows.h"

#include <QSize>

#include "controls/plain_tip.h"

namespace velmora::controls {

void FileRows::PutOnTop(const QStringList& texts) {
  if (texts.isEmpty()) return;
  beginInsertRows({}, 0, int(texts.size()) - 1);
  for (const QString& text : texts) rows_.push_front(text);
  endInsertRows();
}

void FileRows::Append(const QStringList& texts) {
  if (texts.isEmpty()) return;
  beginInsertRows({}, Count(), Count() + int(texts.size()) - 1);
  rows_.insert(rows_.end(), texts.begin(), texts.end());
  endInsertRows();
}

void FileRows::Clear() {
  beginResetModel();
  rows_.clear();
  endResetModel();
}

QString FileRows::TextAt(int row) const {
  return row >= 0 && row < Count() ? rows_[static_cast<std::size_t>(row)] : QString();
}

int FileRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Count(); }

QVariant FileRows::data(const QModelIndex& index, int role) const {
  if (role == Qt::SizeHintRole && rowHeight_ > 0) return QSize(0, rowHeight_);
  if (role == Qt::ToolTipRole) return PlainTip(TextAt(index.row()));
  const bool shown = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
  return shown ? QVariant(TextAt(index.row())) : QVariant();
}

QVariant FileRows::headerData(int, Qt::Orientation orientation, int role) const {
  return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(title_) : QVariant();
}

}  // namespace velmora::controls
