// The text between the tags, as the body pane can lay it out.
#pragma once

#include <QString>
#include <QStringView>

namespace velmora::workflow {

/// Appends texts of HTML to HTML. Characters that have a meaning for the document are written as entities,
/// those that it keeps for itself are left out. Places to break are put into words that have none, and blocks
/// begin anew where they never end: a layout pays dearly for both.
class ShownText {
 public:
  void Append(QStringView text, QString& out);

  /// A blank in the place of something that is left out.
  void AppendBlank(QString& out);

  /// A tag was written: a word may break there.
  void OnTag() { word_ = 0; }
  void OnBlock() { word_ = block_ = 0; }

 private:
  void AppendCharacter(char32_t character, QString& out);
  qsizetype AppendEntity(QStringView text, QString& out);
  void Count(qsizetype units, bool breaks, QString& out);

  qsizetype word_ = 0;   ///< units since the last place to break
  qsizetype block_ = 0;  ///< units since the last block began
};

}  // namespace velmora::workflow
