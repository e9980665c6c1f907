#include "workflow/panes/shown_text.h"

#include <algorithm>

namespace velmora::workflow {
namespace {

constexpr qsizetype kLongestWord = 256;
constexpr qsizetype kLongestBlock = 32768;

constexpr qsizetype kLongestEntity = 12;

bool IsSpace(char32_t c) { return c == U' ' || (c >= U'\t' && c <= U'\r'); }

/// Controls, and the marks by which a document keeps its frames and pictures apart from its text.
bool IsLeftOut(char32_t c) {
  return (c < U' ' && !IsSpace(c)) || (c >= 0xD800 && c <= 0xDFFF) || (c >= 0xFDD0 && c <= 0xFDEF) || c == 0xFFFC ||
         c == 0x2028 || c == 0x2029 || (c & 0xFFFE) == 0xFFFE || c > 0x10FFFF;
}

}  // namespace

void ShownText::Append(QStringView text, QString& out) {
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == u'&') {
      i += AppendEntity(text.sliced(i), out) - 1;
    } else if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      AppendCharacter(QChar::surrogateToUcs4(c, text[++i]), out);
    } else {
      AppendCharacter(c.unicode(), out);
    }
  }
}

void ShownText::AppendBlank(QString& out) {
  if (!out.isEmpty() && out.back() != u' ') AppendCharacter(U' ', out);
}

void ShownText::AppendCharacter(char32_t character, QString& out) {
  if (IsLeftOut(character)) return;
  Count(1, IsSpace(character), out);
  switch (character) {
    case U'<':
      out += QStringLiteral("&lt;");
      break;
    case U'>':
      out += QStringLiteral("&gt;");
      break;
    case U'&':
      out += QStringLiteral("&amp;");
      break;
    default:
      out += QChar::fromUcs4(character);
      break;
  }
}

/// Appends what stands for one character, or a lone "&"; gives the units that it takes in the source.
qsizetype ShownText::AppendEntity(QStringView text, QString& out) {
  const qsizetype end = text.left(kLongestEntity).indexOf(u';');
  const QStringView name = end > 1 ? text.sliced(1, end - 1) : QStringView();
  if (name.startsWith(u'#')) {
    const bool hex = name.size() > 1 && (name[1] == u'x' || name[1] == u'X');
    bool isNumber = false;
    const uint number = name.sliced(hex ? 2 : 1).toUInt(&isNumber, hex ? 16 : 10);
    if (isNumber) AppendCharacter(number, out);
    return end + 1;
  }
  const bool isName = !name.isEmpty() && std::all_of(name.begin(), name.end(),
                                                     [](QChar c) { return c < u'\x7F' && c.isLetterOrNumber(); });
  if (!isName) {
    AppendCharacter(U'&', out);
    return 1;
  }
  Count(1, false, out);
  out += text.first(end + 1);
  return end + 1;
}

void ShownText::Count(qsizetype units, bool breaks, QString& out) {
  word_ = breaks ? 0 : word_ + units;
  block_ += units;
  if (block_ > kLongestBlock && (breaks || word_ > kLongestWord)) {
    out += QStringLiteral("<div></div>");
    word_ = block_ = 0;
  }
  if (word_ > kLongestWord) {
    out += QChar(0x200B);
    word_ = 0;
  }
}

}  // namespace velmora::workflow
