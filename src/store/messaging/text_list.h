// Texts that hold several values, one behind the other.
#pragma once

#include <vector>

#include "text/text.h"

namespace velmora::messaging {

/// The parts between the separators, trimmed, without the empty ones.
std::vector<text::Text> SplitList(text::TextView list, text::TextView separators);

/// The parts joined by "; ".
text::Text JoinList(const std::vector<text::Text>& parts);

}  // namespace velmora::messaging
