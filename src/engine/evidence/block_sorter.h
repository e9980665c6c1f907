// Found blocks in any order, sorted without ever holding them as they are.
#pragma once

#include <cstdint>
#include <tuple>

#include "engine/evidence/block_list.h"
#include "engine/packed_sorter.h"

namespace velmora::engine {

/// By id; of several of one id those come first that stand where they were written, then the ones ahead in the file.
inline std::tuple<Bid, bool, std::uint64_t> ByIdAndPlace(const FoundBlock& block) {
  return {block.bid, block.grade != Grade::kProven, block.offset};
}

using BlockSorter = PackedSorter<BlockList, ByIdAndPlace>;

}  // namespace velmora::engine
