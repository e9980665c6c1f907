// Cells that are one line high: what they show of a text, and what they stand for.
#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QModelIndex>
#include <QString>
#include <algorithm>

namespace velmora::workflow {

/// As much of a text as one line takes: its beginning, with blanks for line ends and other controls.
inline QString OneLine(const QString& text) {
  constexpr qsizetype kMost = 300;
  QString line = text.left(kMost);
  const auto isControl = [](QChar c) {
    return c < u' ' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
  };
  std::replace_if(line.begin(), line.end(), isControl, QChar(u' '));
  return text.size() > kMost ? line + QChar(0x2026) : line;
}

/// The text of a cell as it was read, whatever its length and lines.
inline constexpr int kWholeValueRole = Qt::UserRole;

/// Answers the keys that copy. A view by itself would copy what it shows. False: other keys were pressed.
inline bool CopyWholeValue(const QKeyEvent& event, const QModelIndex& cell) {
  if (!event.matches(QKeySequence::Copy)) return false;
  if (cell.isValid()) QGuiApplication::clipboard()->setText(cell.data(kWholeValueRole).toString());
  return true;
}

}  // namespace velmora::workflow
