#include "engine/evidence/context_pairing.h"

#include <unordered_set>

namespace velmora::engine {
namespace {

/// Of lists that hold a key which many of them hold, so many are tried that were written nearest to the message.
constexpr std::size_t kMostTried = 16;
constexpr std::size_t kMostKept = 4;  ///< of them, the nearest

constexpr std::size_t kNeighbours = 12;  ///< on each side
constexpr std::uint64_t kNear = 64;      ///< of ids, where the sizes do not tell
constexpr std::int64_t kTelling = 8;     ///< times as many lists on one side of their messages as on the other
constexpr std::uint64_t kJustBefore = 2 * kBidStep;

std::uint64_t Distance(Bid a, Bid b) { return Value(a) < Value(b) ? Value(b) - Value(a) : Value(a) - Value(b); }

/// The lists that hold all keys, by their positions.
std::vector<std::uint32_t> Holding(const SubnodeLists& lists, Bid bid, std::span<const Nid> keys) {
  std::span<const SubnodeLists::Entry> fewest;
  for (const Nid key : keys) {
    const auto held = lists.Holding(key);
    if (key == keys.front() || held.size() < fewest.size()) fewest = held;
    if (held.size() <= 1) break;
  }
  if (fewest.size() > kMostTried) {
    const auto above = std::ranges::lower_bound(
        fewest, bid, {}, [&](const SubnodeLists::Entry& entry) { return lists.All()[entry.list].bid; });
    const auto before = std::min<std::size_t>(above - fewest.begin(), kMostTried / 2);
    const std::size_t first =
        std::min(static_cast<std::size_t>(above - fewest.begin()) - before, fewest.size() - kMostTried);
    fewest = fewest.subspan(first, kMostTried);
  }
  std::vector<std::uint32_t> holding;
  for (const SubnodeLists::Entry& entry : fewest) {
    const bool all = std::ranges::all_of(keys, [&](Nid key) { return lists.Holds(entry.list, key); });
    if (all) holding.push_back(entry.list);
  }
  return holding;
}

Bid Best(const EvidenceView& view, const MessageFacts& message, const SubnodeLists& lists,
         std::span<const std::uint32_t> holding, TreeSizes& sizes) {
  Bid best = kNoBid;
  std::pair<bool, bool> rankOfBest;
  for (const std::uint32_t at : holding) {  // the newest last
    const Bid list = lists.All()[at].bid;
    const std::pair rank(view.IsFreed(message.bid) || !view.IsFreed(list),
                         holding.size() == 1 || sizes.Of({message.bid, list}) == message.size);
    if (best != kNoBid && rank < rankOfBest) continue;
    best = list;
    rankOfBest = rank;
  }
  return best;
}

/// A list that may belong to a message, and how well it does: the least is the best.
struct Candidate {
  bool failsSize = false;
  std::uint64_t distance = 0;
  bool isOnRareSide = false;  ///< of the message, for this store
  std::uint32_t message = 0;
  std::uint32_t list = 0;
  friend auto operator<=>(const Candidate&, const Candidate&) = default;
};

bool MayBelong(const MessageFacts& message, const SubnodeList& list) {
  if (!message.hasRecipients && !message.hasAttachments) {
    return list.bid < message.bid && Distance(list.bid, message.bid) <= kJustBefore;
  }
  return (list.hasRecipients || !message.hasRecipients) && list.hasAttachments == message.hasAttachments;
}

/// Finds the lists for messages that no keys tell of: best pairs first, each list once.
class Neighbours {
 public:
  Neighbours(const EvidenceView& view, const SubnodeLists& lists, TreeSizes& sizes)
      : view_(view), lists_(lists), sizes_(sizes) {
    std::int64_t above = 0;
    std::int64_t below = 0;
    for (const NodeClaim& claim : view.Judged().nodes) {
      if (!IsInUse(claim.standing)) continue;
      const ndb::NodeTrees& trees = claim.node.trees;
      taken_.insert(Canonical(trees.bidSub));
      if (velmora::IsMessage(claim.node.nid) && trees.bidSub != kNoBid)
        ++(trees.bidSub > trees.bidData ? above : below);
    }
    areAbove_ = above >= kTelling * (below + 1);
    areBelow_ = below >= kTelling * (above + 1);
    for (std::uint32_t i = 0; i < lists.All().size(); ++i) {
      if (!lists.All()[i].hasValues) keyless_.push_back(i);
    }
  }

  void AddKeyless(const MessageFacts& message, std::uint32_t number) {
    const auto bidOf = [&](std::uint32_t list) { return lists_.All()[list].bid; };
    const auto above =
        static_cast<std::size_t>(std::ranges::lower_bound(keyless_, message.bid, {}, bidOf) - keyless_.begin());
    for (std::size_t at = above - std::min(above, kNeighbours); at < std::min(keyless_.size(), above + kNeighbours);
         ++at) {
      if (MayBelong(message, lists_.All()[keyless_[at]])) Add(message, number, keyless_[at]);
    }
  }

  void Add(const MessageFacts& message, std::uint32_t number, std::uint32_t list) {
    const Bid bid = lists_.All()[list].bid;
    if (taken_.contains(bid) || (view_.IsFreed(bid) && !view_.IsFreed(message.bid))) return;
    const bool failsSize = sizes_.Of({message.bid, bid}) != message.size;
    const std::uint64_t distance = Distance(message.bid, bid);
    const bool isOnRareSide = bid > message.bid ? areBelow_ : areAbove_;
    if (!failsSize || distance <= kNear) candidates_.push_back({failsSize, distance, isOnRareSide, number, list});
  }

  void Take(std::vector<Bid>& listOf) {
    std::ranges::sort(candidates_);
    for (const Candidate& candidate : candidates_) {
      const Bid list = lists_.All()[candidate.list].bid;
      if (listOf[candidate.message] == kNoBid && taken_.insert(list).second) listOf[candidate.message] = list;
    }
  }

 private:
  const EvidenceView& view_;
  const SubnodeLists& lists_;
  TreeSizes& sizes_;
  std::unordered_set<Bid> taken_;
  // Most programs write the list of a message ahead of it, others behind it; both are false where nothing tells.
  bool areAbove_ = false;
  bool areBelow_ = false;
  std::vector<std::uint32_t> keyless_;
  std::vector<Candidate> candidates_;
};

}  // namespace

Bid ListOfKeys(const EvidenceView& view, Bid bid, std::span<const Nid> keys, const SubnodeLists& lists) {
  if (keys.empty()) return kNoBid;
  Bid best = kNoBid;
  for (const std::uint32_t at : Holding(lists, bid, keys)) {
    const Bid list = lists.All()[at].bid;
    if (view.IsFreed(bid) || !view.IsFreed(list)) best = std::max(best, list);
  }
  return best;
}

std::vector<Bid> PairWithLists(const EvidenceView& view, const MessageContexts& messages, const SubnodeLists& lists,
                               TreeSizes& sizes, RunContext& run) {
  std::vector<Bid> listOf(messages.facts.size(), kNoBid);
  Neighbours neighbours(view, lists, sizes);
  for (std::uint32_t i = 0; i < messages.facts.size(); ++i) {
    run.control.PausePoint();
    const MessageFacts& message = messages.facts[i];
    if (view.IsDataInUse(message.bid)) continue;
    if (message.keyCount == 0) {
      neighbours.AddKeyless(message, i);
      continue;
    }
    std::vector<std::uint32_t> holding = Holding(lists, message.bid, messages.KeysOf(message));
    if (message.hasCommonKeys) {
      const auto distance = [&](std::uint32_t list) { return Distance(message.bid, lists.All()[list].bid); };
      std::ranges::stable_sort(holding, {}, distance);
      if (holding.size() > kMostKept) holding.resize(kMostKept);
      for (const std::uint32_t list : holding) neighbours.Add(message, i, list);
    } else {
      listOf[i] = Best(view, message, lists, holding, sizes);
    }
  }
  neighbours.Take(listOf);
  return listOf;
}

}  // namespace velmora::engine
