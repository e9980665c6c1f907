#include "workflow/panes/html_rules.h"

#include <QHash>
#include <algorithm>
#include <iterator>

namespace velmora::workflow {
namespace {

using enum HtmlRule::Treatment;

constexpr std::uint32_t kAroundParagraph = kCell | kTable | kListItem | kTerm;

constexpr HtmlRule kRules[] = {
    // Text.
    {u"a", kShow},
    {u"b", kShow},
    {u"strong", kShow},
    {u"i", kShow},
    {u"em", kShow},
    {u"u", kShow},
    {u"s", kShow},
    {u"big", kShow},
    {u"small", kShow},
    {u"sub", kShow},
    {u"sup", kShow},
    {u"tt", kShow},
    {u"code", kShow},
    {u"font", kShow},
    {u"span", kShow},
    {u"cite", kShow},
    {u"var", kShow},
    {u"kbd", kShow, kNoGroup, kNoGroup, kNoGroup, u"code"},
    {u"samp", kShow, kNoGroup, kNoGroup, kNoGroup, u"code"},
    {u"strike", kShow, kNoGroup, kNoGroup, kNoGroup, u"s"},
    {u"del", kShow, kNoGroup, kNoGroup, kNoGroup, u"s"},
    {u"ins", kShow, kNoGroup, kNoGroup, kNoGroup, u"u"},
    // Paragraphs.
    {u"p", kShow, kParagraph, kParagraph, kAroundParagraph},
    {u"div", kShow, kBlock},
    {u"center", kShow, kBlock},
    {u"blockquote", kShow, kBlock},
    {u"pre", kShow, kBlock},
    {u"address", kShow, kBlock},
    {u"h1", kShow, kBlock},
    {u"h2", kShow, kBlock},
    {u"h3", kShow, kBlock},
    {u"h4", kShow, kBlock},
    {u"h5", kShow, kBlock},
    {u"h6", kShow, kBlock},
    {u"section", kShow, kBlock, kNoGroup, kNoGroup, u"div"},
    {u"article", kShow, kBlock, kNoGroup, kNoGroup, u"div"},
    {u"header", kShow, kBlock, kNoGroup, kNoGroup, u"div"},
    {u"footer", kShow, kBlock, kNoGroup, kNoGroup, u"div"},
    {u"form", kShow, kBlock, kNoGroup, kNoGroup, u"div"},
    {u"br", kShowVoid},
    {u"hr", kShowVoid},
    // Lists.
    {u"ul", kShow, kList},
    {u"ol", kShow, kList},
    {u"li", kShow, kListItem, kListItem, kList | kTable},
    {u"dl", kShow, kTermList},
    {u"dt", kShow, kTerm, kTerm, kTermList | kTable},
    {u"dd", kShow, kTerm, kTerm, kTermList | kTable},
    // Tables.
    {u"table", kShow, kTable},
    {u"thead", kShow, kRowGroup, kRowGroup | kRow, kTable},
    {u"tbody", kShow, kRowGroup, kRowGroup | kRow, kTable},
    {u"tfoot", kShow, kRowGroup, kRowGroup | kRow, kTable},
    {u"tr", kShow, kRow, kRow, kTable},
    {u"td", kShow, kCell, kCell, kRow | kTable},
    {u"th", kShow, kCell, kCell, kRow | kTable},
    // What fetches, runs or would show as text.
    {u"img", kPicture},
    {u"script", kDropContent},
    {u"style", kDropContent},
    {u"title", kDropContent},
    {u"iframe", kDropContent},
    {u"object", kDropContent},
    {u"applet", kDropContent},
    {u"audio", kDropContent},
    {u"video", kDropContent},
    {u"svg", kDropContent},
    {u"math", kDropContent},
    {u"select", kDropContent},
    {u"template", kDropContent},
    {u"noframes", kDropContent},
};

bool IsNumber(QStringView value, qsizetype digits) {
  return !value.isEmpty() && value.size() <= digits &&
         std::all_of(value.begin(), value.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool IsLength(QStringView value) { return IsNumber(value.endsWith(u'%') ? value.chopped(1) : value, 4); }

bool IsFontSize(QStringView value) {
  if (value.startsWith(u'+') || value.startsWith(u'-')) value = value.sliced(1);
  return value.size() == 1 && value[0] >= u'1' && value[0] <= u'7';
}

/// A word or a colour: nothing in it can name a place or break out of a declaration.
bool IsPlain(QStringView value) {
  return value.size() <= 64 &&
         std::all_of(
             value.begin(), value.end(),
             [](QChar c) { return (c < u'\x7F' && c.isLetterOrNumber()) || QStringView(u"#%,. -()").contains(c); }) &&
         !value.contains(u"url(", Qt::CaseInsensitive);
}

/// Points and pixels up to a size that can still be read.
bool IsTextSize(QStringView value) {
  if (!value.endsWith(u"pt", Qt::CaseInsensitive) && !value.endsWith(u"px", Qt::CaseInsensitive)) return false;
  bool isNumber = false;
  const double size = value.chopped(2).toDouble(&isNumber);
  return isNumber && size >= 1 && size <= 72;
}

constexpr QStringView kPlainProperties[] = {u"color",      u"background-color", u"background", u"font-weight",
                                            u"font-style", u"text-decoration",  u"text-align", u"vertical-align"};

QString ShownStyle(QStringView style) {
  QString shown;
  for (const QStringView declaration : style.left(2000).tokenize(u';')) {
    const qsizetype colon = declaration.indexOf(u':');
    if (colon < 0) continue;
    const QString property = declaration.first(colon).trimmed().toString().toLower();
    const QStringView value = declaration.sliced(colon + 1).trimmed();
    const bool plain = std::ranges::find(kPlainProperties, QStringView(property)) != std::end(kPlainProperties);
    if (plain ? IsPlain(value) : property == u"font-size" && IsTextSize(value)) {
      shown += property + u':' + value.toString() + u';';
    }
  }
  return shown;
}

QString Written(QStringView name, QStringView value) {
  QString escaped = value.toString();
  escaped.replace(u'"', QStringLiteral("&quot;")).replace(u'<', QStringLiteral("&lt;"));
  return u' ' + name.toString() + QStringLiteral("=\"") + escaped + u'"';
}

}  // namespace

const HtmlRule& HtmlRuleOf(QStringView name) {
  static const QHash<QStringView, const HtmlRule*> byName = [] {
    QHash<QStringView, const HtmlRule*> rules;
    for (const HtmlRule& rule : kRules) rules.insert(rule.name, &rule);
    return rules;
  }();
  static constexpr HtmlRule kUnknown;
  return *byName.value(name, &kUnknown);
}

QString ShownAttribute(const HtmlRule& rule, const QString& name, QStringView value) {
  const bool inTable = (rule.group & (kTable | kTablePart)) != 0;
  if (name == u"style") {
    const QString style = ShownStyle(value);
    return style.isEmpty() ? QString() : Written(name, style);
  }
  // The paragraphs of a word processor stand close to each other.
  if (name == u"class") return value.startsWith(u"Mso") ? QStringLiteral(" style=\"margin:0px\"") : QString();
  bool shown = false;
  if (name == u"href") shown = rule.name == u"a" && value.size() <= 2000;
  if (name == u"color" || name == u"bgcolor" || name == u"align" || name == u"valign") shown = IsPlain(value);
  if (name == u"size") shown = rule.name == u"font" && IsFontSize(value);
  if (name == u"width") shown = inTable && IsLength(value);
  if (name == u"colspan" || name == u"rowspan") shown = rule.group == kCell && SpanOf(value) > 1;
  if (name == u"border" || name == u"cellpadding" || name == u"cellspacing") shown = inTable && IsNumber(value, 2);
  if (name == u"start") shown = rule.group == kList && IsNumber(value, 6);
  if (name == u"type") shown = rule.group == kList && IsPlain(value);
  return shown ? Written(name, value) : QString();
}

int SpanOf(QStringView value) {
  constexpr int kWidest = 20;
  const int span = IsNumber(value, 2) ? value.toInt() : 1;
  return span > kWidest ? 1 : std::max(span, 1);
}

}  // namespace velmora::workflow
