// Text as a store may hold it, and the lengths to which it may run in the places that are limited.
#pragma once

#include <cstddef>
#include <vector>

#include "text/text.h"

namespace velmora::messaging {

/// Limit of names and subjects, in UTF-16 units.
inline constexpr std::size_t kNameLimit = 255;

/// The text with each lone surrogate and each NUL inside it replaced by U+FFFD; NULs at its end are dropped.
/// Readers take a text with one of these for damaged.
text::Text Storable(text::TextView text);

text::TextView WithoutNulsAtEnd(text::TextView text);

/// Is the text its own storable form?
bool IsStorable(text::TextView text);

/// At most `units` UTF-16 units from the start, never half a surrogate pair.
text::TextView CutToUnits(text::TextView text, std::size_t units);

/// A name or another text of one line: storable, blanks in place of control characters, at most 255 units.
text::Text NameOf(text::TextView text);

/// At most `characters` code points from the start. Cells of tables are cut so: a table that shows fewer
/// than 255 characters of a longer value counts as different from its object.
text::TextView CutToCharacters(text::TextView text, std::size_t characters);

/// Without the blanks (spaces, tabs, line ends) on both sides.
text::TextView Trimmed(text::TextView text);

/// The text with the letters a to z as capitals; nothing else changes.
text::Text AsciiUpper(text::TextView text);

/// A text that holds several values: the parts between the separators, trimmed, without the empty ones.
std::vector<text::Text> SplitList(text::TextView list, text::TextView separators);

/// The parts joined by "; ".
text::Text JoinList(const std::vector<text::Text>& parts);

}  // namespace velmora::messaging
