// Which blocks are still in use.
//
// With the whole newest block tree that is certain. Otherwise a block is live if a leaf that counts says so, unless
// blocks are newer than all leaves, which tells that these are old. It is freed if any leaf, however old, has ids on
// both sides of it and not its own: ids never come back.
#pragma once

#include <vector>

#include "engine/evidence/evidence.h"
#include "engine/evidence/found_tree.h"

namespace velmora::engine {

/// Of `evidence.blocks`, in their order. `members` are the pages of the newest tree, or none.
std::vector<BlockStatus> StatusesOf(const Evidence& evidence, const FoundTree& tree, const std::vector<bool>& members);

/// The id of the newest block that is whole; 0 if there is none.
std::uint64_t NewestWholeBlock(const Evidence& evidence);

}  // namespace velmora::engine
