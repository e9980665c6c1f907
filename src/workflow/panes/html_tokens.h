// Cuts HTML into texts and tags. Whatever the input, every character is looked at a bounded number of times.
#pragma once

#include <QString>
#include <QStringView>
#include <utility>
#include <vector>

namespace velmora::workflow {

struct HtmlToken {
  enum Kind { kText, kStartTag, kEndTag };
  Kind kind = kText;
  QStringView text;        ///< of a text, as it stands
  QString name;            ///< of a tag, in lower case
  QStringView attributes;  ///< of a start tag, as they stand
};

class HtmlTokens {
 public:
  /// `html` outlives this object and its tokens.
  explicit HtmlTokens(QStringView html) : html_(html) {}

  /// The next text or tag; comments, declarations and instructions are passed over. False at the end.
  bool Next(HtmlToken& token);

  /// Goes on behind the end tag of that name (lower case), or to the end if there is none.
  void SkipContentOf(QStringView name);

 private:
  bool SkipMarkup();
  qsizetype EndOfTag(qsizetype from) const;

  QStringView html_;
  qsizetype at_ = 0;
};

/// Names in lower case, values without their quotes, entities as they stand. A cut-off value ends with the text.
std::vector<std::pair<QString, QStringView>> AttributesOf(QStringView attributes);

}  // namespace velmora::workflow
