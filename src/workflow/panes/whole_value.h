// What a cell stands for, where it shows only the beginning.
#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QModelIndex>

namespace velmora::workflow {

/// The text of a cell as it was read, whatever its length and lines.
inline constexpr int kWholeValueRole = Qt::UserRole;

/// Answers the keys that copy. A view by itself would copy what it shows. False: other keys were pressed.
inline bool CopyWholeValue(const QKeyEvent& event, const QModelIndex& cell) {
  if (!event.matches(QKeySequence::Copy)) return false;
  if (cell.isValid()) QGuiApplication::clipboard()->setText(cell.data(kWholeValueRole).toString());
  return true;
}

}  // namespace velmora::workflow
