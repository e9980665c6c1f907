// From what a pass found to the blocks that count, one for each id.
//
// A proven block comes first; where there are several of one id, the one at the place that the block tree names, else
// the first in the file. An id of which none is left keeps the place that the block tree names, or that of a block
// whose checksum fails, if nothing that is proven stands there: its bytes may be wrong.
#pragma once

#include "engine/evidence/evidence.h"
#include "engine/evidence/evidence_pass.h"

namespace velmora::engine {

/// Fills in pages, blocks and what goes with them; `evidence` has layout and encoding.
void MapBlocks(const Source& source, Finds finds, const std::optional<ToldByHeader>& told, Evidence& evidence,
               RunContext& run);

}  // namespace velmora::engine
