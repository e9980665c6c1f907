// Does a run of UTF-16 units look like text that somebody wrote?
#pragma once

#include "text/text.h"

namespace velmora::text {

/// True when the text is well-formed UTF-16 in at least one byte order (surrogates paired, no U+FFFE, no
/// U+FFFF) and holds in that order no C0 control but tab, CR and LF. Empty text is not plausible.
/// Names in any script pass; a run of binary bytes, as a rule, does not.
bool LooksLikeText(TextView text);

}  // namespace velmora::text
