// The colours of the pages, and the look of the fields on them.
#pragma once

#include <QPalette>
#include <QString>

namespace velmora::workflow {

/// The art of the pages is light, so their colours are their own and do not follow a dark theme, which
/// would put white text on it.
QPalette PagePalette();

/// Style sheet of edits, combo boxes and lists on a page: rounded like the buttons beside them.
QString FieldStyle();

/// The same of an edit that only tells something: it has neither frame nor ground.
QString BareFieldStyle();

}  // namespace velmora::workflow
