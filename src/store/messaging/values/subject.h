// Subjects. A store keeps a subject with its prefix ("Re: ") and with two characters before it that tell
// how long the prefix is, so that sorting by subject can leave it out.
#pragma once

#include "text/text.h"

namespace velmora::messaging {

struct StoredSubject {
  text::Text stored;      ///< the property: U+0001, the prefix length plus 1 as a character, prefix, rest; or empty
  text::Text normalized;  ///< the rest alone, which is the conversation topic
};

/// The stored form of a subject. A subject that carries a valid pair of such characters already keeps the
/// prefix length that they tell; else one to three letters, a colon and a blank are a prefix. Control
/// characters become blanks, and prefix and rest are cut to 255 UTF-16 units.
StoredSubject StoreSubject(text::TextView subject);

/// The subject of a stored form: prefix and rest without the two characters.
text::TextView SubjectText(text::TextView stored);

}  // namespace velmora::messaging
