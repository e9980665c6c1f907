#include "engine/evidence.h"

#include <algorithm>

namespace velmora::engine {

const FoundBlock* Evidence::Find(Bid bid) const {
  const auto block = std::ranges::lower_bound(blocks, Canonical(bid), {}, &FoundBlock::bid);
  return block != blocks.end() && block->bid == Canonical(bid) ? &*block : nullptr;
}

}  // namespace velmora::engine
