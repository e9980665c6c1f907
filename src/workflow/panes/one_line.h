// Texts of the store in rows that are one line high.
#pragma once

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

}  // namespace velmora::workflow
