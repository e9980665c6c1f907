#include "engine/evidence/newer_context.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_set>

#include "engine/evidence/context_facts.h"
#include "store/format/byte_view.h"
#include "store/format/property_tags.h"
#include "store/ltp/property_context.h"

namespace velmora::engine {
namespace {

/// Contexts of one search key that are looked at for a message, and ids to either side in which its list is sought.
constexpr std::size_t kMostNewer = 16;
constexpr std::uint64_t kListReach = 64 * kBidStep;

/// What tells versions of one message: its search key, and the ids of the sub-nodes that its values ask for.
struct Identity {
  std::uint64_t searchKey = 0;  ///< hashed
  std::vector<Nid> keys;        ///< ascending
};

struct TopContext {
  std::uint64_t searchKey = 0;
  Bid bid{};
  friend auto operator<=>(const TopContext&, const TopContext&) = default;
};

class ContextSeeker {
 public:
  ContextSeeker(const EvidenceBlocks& blocks, const Evidence& evidence, Judgement& judgement, RunContext& run)
      : blocks_(blocks), evidence_(evidence), judgement_(judgement), run_(run) {}

  void Run() {
    std::vector<NodeClaim> before;
    for (NodeClaim& claim : judgement_.nodes) {
      if (!IsInDoubt(claim)) continue;
      if (!isIndexed_) IndexTops();
      if (const auto newer = NewerOf(claim.node)) {
        before.push_back({claim.node, Standing::kOlder});
        taken_.insert(newer->bidData);
        claim.node.trees = *newer;
      }
    }
    for (const NodeClaim& claim : before) judgement_.nodes.push_back(claim);
    std::ranges::stable_sort(judgement_.nodes, {}, [](const NodeClaim& claim) {
      return std::pair(claim.node.nid, !IsInUse(claim.standing));
    });
  }

 private:
  /// kUnknown of a block that was not found.
  BlockStatus StatusOf(Bid bid) const {
    const std::optional<std::size_t> number = evidence_.NumberOf(bid);
    return number ? judgement_.statuses[*number] : BlockStatus::kUnknown;
  }

  bool IsInDoubt(const NodeClaim& claim) const {
    if (!IsInUse(claim.standing) || TypeOf(claim.node.nid) != NidType::kNormalMessage) return false;
    return StatusOf(claim.node.trees.bidData) != BlockStatus::kLive;
  }

  bool IsCandidate(const FoundBlock& block) const {
    return !block.isNamed && blocks_.IsTrusted(block.bid) && StatusOf(block.bid) != BlockStatus::kFreed;
  }

  void IndexTops() {
    isIndexed_ = true;
    for (const NodeClaim& claim : judgement_.nodes) taken_.insert(claim.node.trees.bidData);
    for (const FoundBlock& block : evidence_.blocks) {
      if (!IsCandidate(block) || taken_.contains(block.bid)) continue;
      run_.control.PausePoint();
      const BlockKind kind = blocks_.KindOf(block);
      if (kind != BlockKind::kPropertyContext && kind != BlockKind::kList) continue;
      if (const auto identity = IdentityOf(block.bid)) tops_.push_back({identity->searchKey, block.bid});
    }
    std::ranges::sort(tops_);
  }

  std::optional<Identity> IdentityOf(Bid bid) const {
    ndb::Faults faults;
    auto context = IfReadable([&] { return ltp::PropertyContext::Open(blocks_, {bid, kNoBid}, &faults); });
    if (!context) return std::nullopt;
    const auto key = context->Binary(tag::kSearchKey);
    if (!key || key->empty()) return std::nullopt;
    Identity identity{std::hash<std::string_view>()(ByteView(*key).Chars()), {}};
    AppendKeys(*context, identity.keys);
    std::ranges::sort(identity.keys);
    return identity;
  }

  std::optional<ndb::NodeTrees> NewerOf(const ndb::NodeEntry& node) const {
    const auto own = IdentityOf(node.trees.bidData);
    if (!own) return std::nullopt;
    const auto begin = std::ranges::upper_bound(tops_, TopContext{own->searchKey, node.trees.bidData});
    const auto end = std::ranges::upper_bound(begin, tops_.end(), own->searchKey, {}, &TopContext::searchKey);
    std::size_t looked = 0;
    for (auto at = end; at != begin && looked < kMostNewer; ++looked) {
      --at;
      if (taken_.contains(at->bid)) continue;
      const auto other = IdentityOf(at->bid);
      if (!other || !AreVersions(own->keys, other->keys)) continue;
      if (const auto list = ListOf(at->bid, other->keys, node.trees.bidSub)) return ndb::NodeTrees{at->bid, *list};
    }
    return std::nullopt;
  }

  static bool AreVersions(const std::vector<Nid>& a, const std::vector<Nid>& b) {
    return (a.empty() && b.empty()) ||
           std::ranges::any_of(a, [&](Nid key) { return std::ranges::binary_search(b, key); });
  }

  /// The list of sub-nodes that a context asks for; nothing if it is not there.
  std::optional<Bid> ListOf(Bid context, const std::vector<Nid>& keys, Bid before) const {
    if (!keys.empty()) {
      for (std::size_t i = evidence_.blocks.FirstFrom(Bid{Value(context) + kListReach + 1}); i-- > 0;) {
        const FoundBlock block = evidence_.blocks[i];
        if (Value(block.bid) + kListReach < Value(context)) break;
        if (block.kind == BlockKind::kSubnodes && IsCandidate(block) && Holds(block.bid, keys)) return block.bid;
      }
    }
    const bool isGone = !evidence_.NumberOf(before) || StatusOf(before) == BlockStatus::kFreed;
    if (before == kNoBid ? !keys.empty() : isGone) return std::nullopt;
    return Holds(before, keys) ? std::optional(before) : std::nullopt;
  }

  bool Holds(Bid list, const std::vector<Nid>& keys) const {
    if (keys.empty()) return true;
    const auto entries = IfReadable([&] { return ndb::ListSubnodes(blocks_, list); });
    return entries && std::ranges::all_of(keys, [&](Nid key) {
             return std::ranges::find(*entries, key, &ndb::SubnodeEntry::nid) != entries->end();
           });
  }

  const EvidenceBlocks& blocks_;
  const Evidence& evidence_;
  Judgement& judgement_;
  RunContext& run_;
  bool isIndexed_ = false;
  std::vector<TopContext> tops_;
  std::unordered_set<Bid> taken_;  ///< data of nodes
};

}  // namespace

void TakeNewerContexts(const EvidenceBlocks& blocks, const Evidence& evidence, Judgement& judgement, RunContext& run) {
  ContextSeeker(blocks, evidence, judgement, run).Run();
}

}  // namespace velmora::engine
