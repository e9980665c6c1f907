#include "engine/node_list.h"

#include <algorithm>

namespace velmora::engine {
namespace {

/// Drops each record that equals the one before it. A leaf among such equals makes the one that stays a
/// leaf's, whichever came first.
void DropRepeats(std::vector<NodeRecord>& records) {
  std::size_t kept = 0;
  for (const NodeRecord& record : records) {
    if (kept > 0 && records[kept - 1] == record) {
      records[kept - 1].upperPage = records[kept - 1].upperPage && record.upperPage;
    } else {
      records[kept++] = record;
    }
  }
  records.resize(kept);
}

}  // namespace

void NodeList::Settle() {
  // Each record belongs behind the last one whose `bidSub` is not greater: the place that a stable sort
  // gives it. A record that was dropped equals its neighbour, so it changes nothing for those after it.
  std::stable_sort(records_.begin(), records_.end(),
                   [](const NodeRecord& a, const NodeRecord& b) { return a.bidSub < b.bidSub; });
  DropRepeats(records_);
  records_.shrink_to_fit();
}

}  // namespace velmora::engine
