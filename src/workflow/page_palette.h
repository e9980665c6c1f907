// The colours of the pages.
#pragma once

#include <QPalette>

namespace velmora::workflow {

/// The art of the pages is light, so their colours are their own and do not follow a dark theme, which
/// would put white text on it.
QPalette PagePalette();

}  // namespace velmora::workflow
