#include "controls/plain_tip.h"

namespace velmora::controls {
namespace {

constexpr qsizetype kMostInTip = 4000;

/// A longer word would make the tip wider than the screen.
constexpr qsizetype kLongestWord = 80;
constexpr QChar kPlaceToBreak(0x200B);

/// Controls, and the marks by which a document keeps its frames and pictures apart from its text.
bool IsBlank(QChar c) {
  return (c < u' ' && c != u'\n' && c != u'\t') || (c >= QChar(0xFDD0) && c <= QChar(0xFDEF)) ||
         c == QChar::ObjectReplacementCharacter || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

}  // namespace

QString PlainTip(const QString& text) {
  if (text.isEmpty()) return {};
  QString lines = text.left(kMostInTip);
  lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
  QString shown;
  qsizetype word = 0;
  for (const QChar c : lines) {
    if (word >= kLongestWord && !c.isSpace() && !c.isLowSurrogate()) {
      shown += kPlaceToBreak;
      word = 0;
    }
    word = c.isSpace() ? 0 : word + 1;
    shown += IsBlank(c) ? QChar(u' ') : c;
  }
  return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(shown.toHtmlEscaped());
}

}  // namespace velmora::controls
