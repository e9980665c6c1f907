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
                   [](const NodeRecord& a, const NodeRecord& b) { return LowBid(a.bidSub) < LowBid(b.bidSub); });
  DropRepeats(records_);
  records_.shrink_to_fit();

  // Numbers that hold both are sorted without a look at the records, which lie all over the memory.
  std::vector<std::uint64_t> nidsAndPlaces;
  nidsAndPlaces.reserve(records_.size());
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (!records_[i].upperPage) nidsAndPlaces.push_back(std::uint64_t{records_[i].nid} << 32 | i);
  }
  std::ranges::sort(nidsAndPlaces);
  byNid_.assign(nidsAndPlaces.size(), 0);
  std::ranges::transform(nidsAndPlaces, byNid_.begin(),
                         [](std::uint64_t both) { return static_cast<std::uint32_t>(both); });
}

const NodeRecord* NodeList::Find(std::uint32_t nid) const {
  const auto found = std::ranges::lower_bound(byNid_, nid, {}, [this](std::uint32_t i) { return records_[i].nid; });
  return found == byNid_.end() || records_[*found].nid != nid ? nullptr : &records_[*found];
}

}  // namespace velmora::engine
