#include "workflow/panes/html_tokens.h"

#include <algorithm>

namespace velmora::workflow {
namespace {

bool IsLetter(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }
bool IsSpace(QChar c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }
bool IsNameEnd(QChar c) { return IsSpace(c) || c == u'>' || c == u'/' || c == u'='; }

/// No element or attribute that means anything has a longer name.
constexpr qsizetype kLongestName = 32;

constexpr std::size_t kMostAttributes = 32;

template <class Test>
qsizetype SkipWhile(QStringView text, qsizetype at, Test test) {
  while (at < text.size() && test(text[at])) ++at;
  return at;
}

}  // namespace

bool HtmlTokens::Next(HtmlToken& token) {
  while (at_ < html_.size()) {
    if (html_[at_] != u'<') {
      const qsizetype begin = at_;
      const qsizetype end = html_.indexOf(u'<', begin);
      at_ = end < 0 ? html_.size() : end;
      token = {HtmlToken::kText, html_.sliced(begin, at_ - begin), {}, {}};
      return true;
    }
    if (SkipMarkup()) continue;
    const bool isEnd = at_ + 1 < html_.size() && html_[at_ + 1] == u'/';
    const qsizetype name = at_ + (isEnd ? 2 : 1);
    if (name >= html_.size() || !IsLetter(html_[name])) {
      token = {HtmlToken::kText, html_.sliced(at_++, 1), {}, {}};
      return true;
    }
    const qsizetype nameEnd = SkipWhile(html_, name, [](QChar c) { return !IsNameEnd(c); });
    const qsizetype end = EndOfTag(nameEnd);
    token = {isEnd ? HtmlToken::kEndTag : HtmlToken::kStartTag,
             {},
             html_.sliced(name, std::min(nameEnd - name, kLongestName)).toString().toLower(),
             html_.sliced(nameEnd, end - nameEnd)};
    at_ = std::min(end + 1, html_.size());
    return true;
  }
  return false;
}

/// Comments, declarations, instructions.
bool HtmlTokens::SkipMarkup() {
  const QStringView rest = html_.sliced(at_);
  if (!rest.startsWith(u"<!") && !rest.startsWith(u"<?")) return false;
  const bool comment = rest.startsWith(u"<!--");
  const qsizetype end = comment ? rest.indexOf(u"-->", 4) : rest.indexOf(u'>');
  at_ = end < 0 ? html_.size() : at_ + end + (comment ? 3 : 1);
  return true;
}

/// Place of the ">" that ends a tag; one in quotes behind a "=" does not count.
qsizetype HtmlTokens::EndOfTag(qsizetype from) const {
  bool value = false;
  for (qsizetype at = from; at < html_.size(); ++at) {
    const QChar c = html_[at];
    if (c == u'>') return at;
    if (value && (c == u'"' || c == u'\'')) {
      at = html_.indexOf(c, at + 1);
      if (at < 0) return html_.size();
    }
    if (!IsSpace(c)) value = c == u'=';
  }
  return html_.size();
}

void HtmlTokens::SkipContentOf(QStringView name) {
  while (at_ < html_.size()) {
    const qsizetype tag = html_.indexOf(u"</", at_);
    if (tag < 0) break;
    at_ = tag + 2;
    const QStringView rest = html_.sliced(at_);
    if (!rest.startsWith(name, Qt::CaseInsensitive)) continue;
    if (rest.size() > name.size() && !IsNameEnd(rest[name.size()])) continue;
    at_ = std::min(EndOfTag(at_) + 1, html_.size());
    return;
  }
  at_ = html_.size();
}

std::vector<std::pair<QString, QStringView>> AttributesOf(QStringView text) {
  std::vector<std::pair<QString, QStringView>> found;
  qsizetype at = 0;
  while (found.size() < kMostAttributes) {
    at = SkipWhile(text, at, [](QChar c) { return IsNameEnd(c); });
    if (at >= text.size()) break;
    const qsizetype name = at;
    at = SkipWhile(text, at, [](QChar c) { return !IsNameEnd(c); });
    const QString attribute = text.sliced(name, std::min(at - name, kLongestName)).toString().toLower();
    at = SkipWhile(text, at, IsSpace);
    QStringView value;
    if (at < text.size() && text[at] == u'=') {
      at = SkipWhile(text, at + 1, IsSpace);
      const bool quoted = at < text.size() && (text[at] == u'"' || text[at] == u'\'');
      const qsizetype begin = quoted ? at + 1 : at;
      qsizetype end = quoted ? text.indexOf(text[at], begin)
                             : SkipWhile(text, begin, [](QChar c) { return !IsSpace(c) && c != u'>'; });
      if (end < 0) end = text.size();
      value = text.sliced(begin, end - begin);
      at = quoted ? end + 1 : end;
    }
    found.emplace_back(attribute, value);
  }
  return found;
}

}  // namespace velmora::workflow
