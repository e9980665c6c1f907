// The maps of names that a file holds, where that of the store is damaged or lost.
//
// A store writes its map anew whenever it gets another name, and gives no identifier twice: what an older map tells is
// still true. None but the newest is named by a node entry, so they are known by what they hold.
#pragma once

#include <vector>

#include "engine/evidence/evidence.h"
#include "store/ltp/property_context.h"

namespace velmora::engine {

/// Whether the properties are those of a map of names.
bool IsNameMap(const ltp::PropertyContext& context);

/// All maps that are whole, freed ones too, the newest first; one that has values in sub-nodes with each list that
/// holds them, the newest of these first, and without any where there is none.
std::vector<ndb::NodeTrees> FindNameMaps(const EvidenceBlocks& blocks, const Evidence& evidence,
                                         const Judgement& judgement, RunContext& run);

}  // namespace velmora::engine
