#include "engine/node_list.h"

#include <algorithm>
#include <utility>

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
                   [](const NodeRecord& a, const NodeRecord& b) { return LowBid(a.bidSub) < LowBid(b.bidSub); });
  DropRepeats(records_);
  records_.shrink_to_fit();

  byNid_.clear();
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (!records_[i].upperPage) byNid_.push_back(static_cast<std::uint32_t>(i));
  }
  byNid_.shrink_to_fit();
  std::ranges::sort(byNid_, {}, [this](std::uint32_t i) { return std::pair(records_[i].nid, i); });
}

const NodeRecord* NodeList::Find(std::uint32_t nid) const {
  const auto found = std::ranges::lower_bound(byNid_, nid, {}, [this](std::uint32_t i) { return records_[i].nid; });
  return found == byNid_.end() || records_[*found].nid != nid ? nullptr : &records_[*found];
}

}  // namespace velmora::engine
