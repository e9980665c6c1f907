#include "engine/context_pairing.h"

#include <tuple>
#include <unordered_set>

namespace velmora::engine {
namespace {

/// Of lists that hold a key which many of them hold, so many are tried that were written nearest to the message.
constexpr std::size_t kMostTried = 64;

constexpr std::size_t kNeighbours = 12;  ///< on each side
constexpr std::uint64_t kNear = 64;      ///< of ids, where the sizes do not tell
constexpr std::uint64_t kJustBefore = 2 * kBidStep;

std::uint64_t Distance(Bid a, Bid b) { return Value(a) < Value(b) ? Value(b) - Value(a) : Value(a) - Value(b); }

/// The lists that hold all keys.
std::vector<Bid> Holding(const SubnodeLists& lists, Bid bid, std::span<const Nid> keys) {
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
  std::vector<Bid> holding;
  for (const SubnodeLists::Entry& entry : fewest) {
    const bool all = std::ranges::all_of(keys, [&](Nid key) { return lists.Holds(entry.list, key); });
    if (all) holding.push_back(lists.All()[entry.list].bid);
  }
  return holding;
}

Bid Best(const EvidenceView& view, const MessageFacts& message, std::span<const Bid> lists, TreeSizes& sizes) {
  if (lists.size() <= 1) return lists.empty() ? kNoBid : lists.front();
  const bool isFreed = view.IsFreed(message.bid);
  const auto rank = [&](Bid list) {
    const std::uint64_t last = message.hasCommonKeys ? ~Distance(message.bid, list) : Value(list);
    return std::tuple(isFreed || !view.IsFreed(list), sizes.Of({message.bid, list}) == message.size, last);
  };
  return *std::ranges::max_element(lists, {}, rank);
}

/// A list that may belong to a message, and how well it does: the least is the best.
struct Candidate {
  bool failsSize = false;
  std::uint64_t distance = 0;
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

void AddNeighbours(const EvidenceView& view, const MessageContexts& messages, std::size_t number,
                   std::span<const SubnodeList> lists, std::span<const std::uint32_t> keyless, TreeSizes& sizes,
                   std::vector<Candidate>& candidates) {
  const MessageFacts& message = messages.facts[number];
  const auto bidOf = [&](std::uint32_t list) { return lists[list].bid; };
  const auto above = std::ranges::lower_bound(keyless, message.bid, {}, bidOf) - keyless.begin();
  const auto first = static_cast<std::size_t>(above) - std::min<std::size_t>(above, kNeighbours);
  const std::size_t last = std::min(keyless.size(), static_cast<std::size_t>(above) + kNeighbours);
  for (std::size_t at = first; at < last; ++at) {
    const SubnodeList& list = lists[keyless[at]];
    if (!MayBelong(message, list) || (view.IsFreed(list.bid) && !view.IsFreed(message.bid))) continue;
    const bool failsSize = sizes.Of({message.bid, list.bid}) != message.size;
    const std::uint64_t distance = Distance(message.bid, list.bid);
    if (failsSize && distance > kNear) continue;
    candidates.push_back({failsSize, distance, static_cast<std::uint32_t>(number), keyless[at]});
  }
}

}  // namespace

Bid ListOfKeys(const EvidenceView& view, Bid bid, std::span<const Nid> keys, const SubnodeLists& lists) {
  if (keys.empty()) return kNoBid;
  Bid best = kNoBid;
  for (const Bid list : Holding(lists, bid, keys)) {
    if (view.IsFreed(bid) || !view.IsFreed(list)) best = std::max(best, list);
  }
  return best;
}

std::vector<Bid> PairWithLists(const EvidenceView& view, const MessageContexts& messages, const SubnodeLists& lists,
                               TreeSizes& sizes, RunContext& run) {
  std::unordered_set<Bid> taken;
  for (const NodeClaim& claim : view.Judged().nodes) {
    if (IsInUse(claim.standing)) taken.insert(Canonical(claim.node.trees.bidSub));
  }
  std::vector<std::uint32_t> keyless;
  for (std::uint32_t i = 0; i < lists.All().size(); ++i) {
    const SubnodeList& list = lists.All()[i];
    if (!list.hasValues && !taken.contains(list.bid)) keyless.push_back(i);
  }

  std::vector<Bid> listOf(messages.facts.size(), kNoBid);
  std::vector<Candidate> candidates;
  for (std::size_t i = 0; i < messages.facts.size(); ++i) {
    run.control.PausePoint();
    const MessageFacts& message = messages.facts[i];
    if (view.IsDataInUse(message.bid)) continue;
    if (message.keyCount != 0) {
      listOf[i] = Best(view, message, Holding(lists, message.bid, messages.KeysOf(message)), sizes);
    } else {
      AddNeighbours(view, messages, i, lists.All(), keyless, sizes, candidates);
    }
  }
  std::ranges::sort(candidates);
  taken.clear();
  for (const Candidate& candidate : candidates) {
    const Bid list = lists.All()[candidate.list].bid;
    if (listOf[candidate.message] == kNoBid && taken.insert(list).second) listOf[candidate.message] = list;
  }
  return listOf;
}

}  // namespace velmora::engine
