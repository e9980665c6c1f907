// A message was changed after the page was written that is left of its entry: the page names what it was before. Its
// new properties are a context that no node names, with the same search key, a higher id, and values in the same
// sub-nodes.
#pragma once

#include "engine/evidence/evidence.h"

namespace velmora::engine {

/// Puts newer properties, with the list of sub-nodes that they ask for, in the place of those of live and doubtful
/// messages whose block is not known to be in use; what the entry said becomes an older version.
void TakeNewerContexts(const EvidenceBlocks& blocks, const Evidence& evidence, Judgement& judgement, RunContext& run);

}  // namespace velmora::engine
