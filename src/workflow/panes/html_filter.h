// Makes the HTML of a mail fit to be shown: whatever it holds, showing it fetches nothing and takes no more than
// a moment.
#pragma once

#include <QString>
#include <QStringView>

namespace velmora::workflow {

/// HTML of the elements that the body pane knows, well formed, without pictures, scripts and style sheets.
///
/// Bounded are the length of the text (what is beyond is cut off, with three dots in its place), the number of
/// elements, their depth, and what the tables cost to lay out; beyond a bound the tags are left out and the
/// text stays. Time and memory are in line with the length.
QString ShownHtml(QStringView html);

}  // namespace velmora::workflow
