// Which elements and attributes of a mail's HTML the body pane shows.
#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>

namespace velmora::workflow {

/// Elements that begin a block, by what they close and keep from being closed.
enum HtmlGroup : std::uint32_t {
  kNoGroup = 0,
  kParagraph = 1,
  kListItem = 2,
  kTerm = 4,
  kCell = 8,
  kRow = 16,
  kRowGroup = 32,
  kTable = 64,
  kList = 128,
  kTermList = 256,
  kBlock = 512,  ///< closes nothing and is closed by nothing
  kTablePart = kCell | kRow | kRowGroup,
};

struct HtmlRule {
  enum Treatment {
    kShow,         ///< the element, with the attributes that are allowed
    kShowVoid,     ///< the same for one without content
    kDropTag,      ///< its content alone
    kDropContent,  ///< nothing of it
    kPicture,      ///< its alternative text
  };
  QStringView name;
  Treatment treatment = kDropTag;
  std::uint32_t group = kNoGroup;
  std::uint32_t closes = kNoGroup;   ///< open elements of these groups end where this one begins
  std::uint32_t barrier = kNoGroup;  ///< unless one of these stands between
  QStringView shownAs = {};          ///< another element; empty: itself
};

/// The rule of an element by its name in lower case; kDropTag for names that are not known.
const HtmlRule& HtmlRuleOf(QStringView name);

/// The attribute as it is to be written, with a blank before it, or nothing. `name` is in lower case.
QString ShownAttribute(const HtmlRule& rule, const QString& name, QStringView value);

/// A number of columns or rows, from 1 to 20.
int SpanOf(QStringView value);

}  // namespace velmora::workflow
