// Which of the messages that no node stands for is only what another one was before.
//
// A message keeps its search key when it is changed, but so do copies of it. A version shares large values with what
// became of it, or neither has any and they were changed at different times; copies have values of their own. And if an
// old node entry gives it the id of a message that is in use, it is an older version whatever else.
#pragma once

#include <vector>

#include "engine/evidence/context_facts.h"

namespace velmora::engine {

/// `isInUse` of each message, in their order. True for those not in use that are versions of one that is, or of a newer
/// one. With `copiesAreInUse` each copy is known to be, so that what has the search key of a newer one in use and is
/// not is no copy. O(n log n), however many share a search key.
std::vector<bool> FindOlderVersions(const EvidenceView& view, const MessageContexts& messages,
                                    const std::vector<bool>& isInUse, bool copiesAreInUse);

}  // namespace velmora::engine
