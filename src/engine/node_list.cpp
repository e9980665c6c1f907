#include "engine/node_list.h"

#include <algorithm>

namespace velmora::engine {

void NodeList::Settle() {
  // Each record belongs behind the last one whose `bidSub` is not greater: the place that a stable sort
  // gives it. A record that was dropped equals its neighbour, so it changes nothing for those after it.
  std::stable_sort(records_.begin(), records_.end(),
                   [](const NodeRecord& a, const NodeRecord& b) { return a.bidSub < b.bidSub; });
  records_.erase(std::unique(records_.begin(), records_.end()), records_.end());
  records_.shrink_to_fit();
}

}  // namespace velmora::engine
