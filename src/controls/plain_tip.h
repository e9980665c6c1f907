// Tips that show a text as it stands.
#pragma once

#include <QString>

namespace velmora::controls {

/// What to hand over as the tip for a text that somebody else wrote. A tip guesses from its first characters
/// whether it is HTML, and then fetches the pictures that it names; so a tip is always HTML of our own, with
/// the text in it character by character. Of a long text it shows the first 4,000.
QString PlainTip(const QString& text);

}  // namespace velmora::controls
