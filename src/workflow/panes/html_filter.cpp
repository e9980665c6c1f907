#include "workflow/panes/html_filter.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "workflow/panes/html_rules.h"
#include "workflow/panes/html_tokens.h"
#include "workflow/panes/shown_text.h"

namespace velmora::workflow {
namespace {

constexpr qsizetype kLongestHtml = 3 * 1024 * 1024;
constexpr int kMostElements = 25000;
constexpr std::size_t kDeepest = 64;

/// The cost of a list grows with the square of its length.
constexpr int kMostListItems = 4000;

/// Each table around a cell doubles the work of its layout, so nested tables are dear.
constexpr int kDeepestTable = 8;
constexpr double kMostTableCost = 200000;
constexpr double kCharactersPerCell = 40;

/// What stands in a table is laid out in one go, other text as it comes into view.
constexpr qsizetype kMostTextInTables = 1024 * 1024;

class HtmlFilter {
 public:
  HtmlFilter(QStringView html, bool tables) : tokens_(html), tables_(tables) {}

  /// Nothing: the tables cost too much.
  std::optional<QString> Run() {
    HtmlToken token;
    while (tokens_.Next(token)) {
      if (token.kind == HtmlToken::kText) {
        AddTableCost(double(token.text.size()) / kCharactersPerCell);
        if (!openTables_.empty()) tableText_ += token.text.size();
        text_.Append(token.text, out_);
      } else if (token.kind == HtmlToken::kStartTag) {
        OnStartTag(token);
      } else {
        OnEndTag(HtmlRuleOf(token.name));
      }
      if (tableCost_ > kMostTableCost || tableText_ > kMostTextInTables) return std::nullopt;
    }
    PopDownTo(0);
    return std::move(out_);
  }

 private:
  struct Table {
    int rows = 0, columns = 0, widest = 0;
  };

  void OnStartTag(const HtmlToken& token) {
    const HtmlRule& rule = HtmlRuleOf(token.name);
    switch (rule.treatment) {
      case HtmlRule::kDropTag:
        break;
      case HtmlRule::kDropContent:
        tokens_.SkipContentOf(rule.name);
        break;
      case HtmlRule::kPicture:
        for (const auto& [name, value] : AttributesOf(token.attributes)) {
          if (name == u"alt") text_.Append(value, out_);
        }
        break;
      case HtmlRule::kShow:
      case HtmlRule::kShowVoid:
        Show(rule, token);
        break;
    }
  }

  void Show(const HtmlRule& rule, const HtmlToken& token) {
    if (rule.closes != kNoGroup) CloseOpen(rule);
    const bool inTable = (rule.group & (kTable | kTablePart)) != 0;
    if (inTable && !tables_) return ShowAsText(rule);
    if ((rule.group & kTablePart) != 0 && openTables_.empty()) return;
    const bool isVoid = rule.treatment == HtmlRule::kShowVoid;
    const bool tooDeep = !isVoid && open_.size() >= kDeepest;
    const bool tooDeepTable = rule.group == kTable && openTables_.size() >= kDeepestTable;
    const bool tooManyItems = rule.group == kListItem && ++listItems_ > kMostListItems;
    if (elements_ >= kMostElements || tooDeep || tooDeepTable || tooManyItems) {
      ShowAsText(rule);
      if (!isVoid) ++left_[&rule];
      return;
    }
    ++elements_;
    QString tag = u'<' + NameOf(rule);
    int columns = 1, rows = 1;
    for (const auto& [name, value] : AttributesOf(token.attributes)) {
      if (name == u"colspan") columns = SpanOf(value);
      if (name == u"rowspan") rows = SpanOf(value);
      tag += ShownAttribute(rule, name, value);
    }
    out_ += tag + u'>';
    OnTag(rule);
    AddTableCost(1);
    if (isVoid) return;
    open_.push_back(&rule);
    if (rule.group == kTable) openTables_.emplace_back();
    if (rule.group == kRow) AddCells(1, 0);
    if (rule.group == kCell) AddCells(rows - 1, columns);
  }

  /// In the place of the element. Rows stand below each other, cells beside each other.
  void ShowAsText(const HtmlRule& rule) {
    const bool breaks = (rule.group & (kRow | kTable | kListItem)) != 0;
    if (breaks && elements_ < kMostElements) {
      out_ += QStringLiteral("<br>");
      ++elements_;
    }
    text_.AppendBlank(out_);
  }

  void OnEndTag(const HtmlRule& rule) {
    if (rule.treatment != HtmlRule::kShow) return;
    if (const auto left = left_.find(&rule); left != left_.end() && left->second > 0) {
      --left->second;
      return;
    }
    for (std::size_t i = open_.size(); i-- > 0;) {
      if (open_[i] == &rule) return PopDownTo(i);
      // The end of an element in a cell does not end the cell.
      if ((open_[i]->group & kCell) != 0 && (rule.group & (kTable | kTablePart)) == 0) return;
    }
  }

  void CloseOpen(const HtmlRule& rule) {
    for (std::size_t i = open_.size(); i-- > 0;) {
      if ((open_[i]->group & rule.barrier) != 0) return;
      if ((open_[i]->group & rule.closes) != 0) PopDownTo(i);
    }
  }

  void PopDownTo(std::size_t depth) {
    while (open_.size() > depth) {
      if (open_.back()->group == kTable) openTables_.pop_back();
      out_ += QStringLiteral("</") + NameOf(*open_.back()) + u'>';
      OnTag(*open_.back());
      open_.pop_back();
    }
  }

  void OnTag(const HtmlRule& rule) { rule.group == kNoGroup ? text_.OnTag() : text_.OnBlock(); }

  static QString NameOf(const HtmlRule& rule) { return (rule.shownAs.isEmpty() ? rule.name : rule.shownAs).toString(); }

  /// A table is laid out as rows by columns, whether or not all its cells are there.
  void AddCells(int rows, int columns) {
    Table& table = openTables_.back();
    const double before = double(table.rows) * table.widest;
    if (columns == 0) table.columns = 0;
    table.rows += rows;
    table.columns += columns;
    table.widest = std::max(table.widest, table.columns);
    AddTableCost(double(table.rows) * table.widest - before);
  }

  void AddTableCost(double cost) {
    if (!openTables_.empty()) tableCost_ += cost * double(1 << openTables_.size());
  }

  HtmlTokens tokens_;
  const bool tables_;
  QString out_;
  ShownText text_;
  std::vector<const HtmlRule*> open_;
  std::vector<Table> openTables_;
  std::map<const HtmlRule*, int> left_;  ///< start tags left out, whose end tags are to be left out too
  int elements_ = 0;
  int listItems_ = 0;
  double tableCost_ = 0;
  qsizetype tableText_ = 0;
};

}  // namespace

QString ShownHtml(QStringView html) {
  const bool cut = html.size() > kLongestHtml;
  if (cut) html = html.first(kLongestHtml);
  auto shown = HtmlFilter(html, true).Run();
  if (!shown) shown = HtmlFilter(html, false).Run();
  return cut ? *shown + QStringLiteral("<p>...</p>") : *shown;
}

}  // namespace velmora::workflow
