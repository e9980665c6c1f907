#include "engine/referenced_ids.h"

#include <algorithm>

namespace velmora::engine {

void ReferencedIds::Build(const NodeList& nodes) {
  ids_.clear();
  for (const NodeRecord& node : nodes.Records()) {
    if (LowBid(node.bidSub) == 0) continue;
    ids_.push_back(LowBid(node.bidData));
    ids_.push_back(LowBid(node.bidSub));
  }
  std::sort(ids_.begin(), ids_.end());
  ids_.erase(std::unique(ids_.begin(), ids_.end()), ids_.end());
}

bool ReferencedIds::IsReferencedId(std::uint32_t id) const {
  return id == 0 || std::binary_search(ids_.begin(), ids_.end(), id);
}

}  // namespace velmora::engine
