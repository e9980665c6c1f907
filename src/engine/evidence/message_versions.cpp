#include "engine/evidence/message_versions.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <unordered_set>

namespace velmora::engine {
namespace {

/// What is known of the messages of one search key, those that rank higher being in it already.
class SameSearchKey {
 public:
  bool HasVersionOf(const MessageContexts& messages, const MessageFacts& message) const {
    const auto keys = messages.KeysOf(message);
    if (keys.empty()) return times_.size() > times_.count(message.modified);
    return std::ranges::any_of(keys, [&](Nid key) { return keys_.contains(key); });
  }

  void Add(const MessageContexts& messages, const MessageFacts& message) {
    const auto keys = messages.KeysOf(message);
    keys_.insert(keys.begin(), keys.end());
    if (keys.empty()) times_.insert(message.modified);
  }

 private:
  std::unordered_set<Nid> keys_;
  std::unordered_set<std::uint32_t> times_;  ///< of change, of messages without keys
};

}  // namespace

std::vector<bool> FindOlderVersions(const EvidenceView& view, const MessageContexts& messages,
                                    const std::vector<bool>& isInUse, bool copiesAreInUse) {
  const std::vector<MessageFacts>& facts = messages.facts;
  std::vector<bool> isOlder(facts.size());
  std::vector<std::uint32_t> order(facts.size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::sort(order, {}, [&](std::uint32_t i) {
    return std::tuple(facts[i].searchKey, facts[i].isHidden, !isInUse[i], ~Value(facts[i].bid));
  });
  SameSearchKey group;
  Bid newestInUse = kNoBid;  // of the group
  for (std::size_t at = 0; at < order.size(); ++at) {
    const MessageFacts& message = facts[order[at]];
    if (message.searchKey == 0) continue;
    const bool isFirst = at == 0 || facts[order[at - 1]].searchKey != message.searchKey ||
                         facts[order[at - 1]].isHidden != message.isHidden;
    if (isFirst) {
      group = {};
      newestInUse = isInUse[order[at]] ? message.bid : kNoBid;
    }
    if (copiesAreInUse && !isInUse[order[at]] && message.bid < newestInUse) isOlder[order[at]] = true;
    if (message.hasCommonKeys) continue;
    if (!isOlder[order[at]] && !isInUse[order[at]]) isOlder[order[at]] = group.HasVersionOf(messages, message);
    group.Add(messages, message);
  }
  for (const NodeClaim& claim : view.Judged().nodes) {
    if (IsInUse(claim.standing) || view.InUse(claim.node.nid) == nullptr) continue;
    const auto named =
        std::ranges::lower_bound(facts, Canonical(claim.node.trees.bidData), {}, &MessageFacts::bid) - facts.begin();
    const auto i = static_cast<std::size_t>(named);
    if (i < facts.size() && facts[i].bid == Canonical(claim.node.trees.bidData) && !isInUse[i]) isOlder[i] = true;
  }
  return isOlder;
}

}  // namespace velmora::engine
