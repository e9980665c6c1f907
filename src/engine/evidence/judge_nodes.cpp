// Which nodes are live, and what became of the others.
//
// If the newest node tree is whole, its entries are the live nodes. Otherwise each leaf that was found has its say
// (found_tree.h); an entry whose block is freed is an older version whatever its leaf says. Where the leaf of a node is
// gone, the newest of its older entries stands in whose blocks are in use, else the newest that is complete.
#include <algorithm>
#include <array>
#include <tuple>
#include <unordered_map>

#include "engine/evidence/block_status.h"
#include "engine/evidence/complete_nodes.h"
#include "engine/evidence/found_tree.h"
#include "engine/evidence/newer_context.h"

namespace velmora::engine {
namespace {

bool IsFolder(Nid nid) {
  const NidType type = TypeOf(nid);
  return type == NidType::kInternal || type == NidType::kNormalFolder || type == NidType::kSearchFolder;
}

class NodeJudge {
 public:
  NodeJudge(const Source& source, const Evidence& evidence, const std::optional<ToldByHeader>& told, RunContext& run)
      : source_(source), evidence_(evidence), told_(told), run_(run), blocks_(source, evidence, judgement_) {}

  Judgement Run() {
    JudgeBlocks();
    CollectEntries();
    std::ranges::stable_sort(claims_, {}, NidOf);  // the newest of each node stays first
    for (auto at = claims_.begin(); at != claims_.end();) {
      const auto end =
          std::find_if(at, claims_.end(), [&](const NodeClaim& claim) { return NidOf(claim) != NidOf(*at); });
      Settle({at, end});
      at = end;
    }
    claims_ = std::vector<NodeClaim>();  // with `{}` it would keep its memory
    if (judgement_.nodesAreExact) {
      MarkLive();
    } else {
      TakeNewerContexts(blocks_, evidence_, judgement_, run_);
    }
    return std::move(judgement_);
  }

 private:
  static Nid NidOf(const NodeClaim& claim) { return claim.node.nid; }

  void JudgeBlocks() {
    const FoundTree tree(source_, evidence_, PageType::kBbt, run_);
    const auto members =
        MembersOfNewest(tree, told_ ? std::optional(told_->blockRoot) : std::nullopt, NewestWholeBlock(evidence_));
    judgement_.blocksAreExact = !members.empty();
    judgement_.statuses = StatusesOf(evidence_, tree, members);
  }

  void CollectEntries() {
    const FoundTree tree(source_, evidence_, PageType::kNbt, run_);
    auto members = MembersOfNewest(tree, told_ ? std::optional(told_->nodeRoot) : std::nullopt, 0);
    if (!members.empty() && !told_ && !IsOfNow(tree, members)) members = {};
    judgement_.nodesAreExact = !members.empty();
    Paint(tree, members, [this](const TreePage& page, std::span<const std::byte> bytes, Shade shade) {
      const NbtEntry entry = DecodeNbtEntry(bytes, *evidence_.layout);
      if (entry.nid == kNoNid) return;
      const ndb::NodeTrees trees{Canonical(entry.bidData), Canonical(entry.bidSub)};
      if (page.found.grade == Grade::kHurt) {
        if (!evidence_.NumberOf(trees.bidData) || !IsNoneOrFound(trees.bidSub)) return;
        ofHurtPages_.push_back(claims_.size());
      }
      claims_.push_back({{entry.nid, trees, entry.nidParent}, StandingOf(shade)});
    });
    DropContradicted();
  }

  /// Of a hurt page an entry counts if its blocks are there, and that of a message only if no entry of a whole
  /// page has one of them with another beside it: a wrong bit leads to blocks of somebody else. Messages are found
  /// without an entry; a folder by the name of another one still holds its own.
  void DropContradicted() {
    if (ofHurtPages_.empty()) return;
    std::unordered_map<Bid, const NodeClaim*> userOf;  // of data and of lists, whose ids differ
    auto hurt = ofHurtPages_.begin();
    for (std::size_t i = 0; i < claims_.size(); ++i) {
      if (hurt != ofHurtPages_.end() && *hurt == i) {
        ++hurt;
      } else if (IsInUse(claims_[i].standing)) {
        userOf.emplace(claims_[i].node.trees.bidData, &claims_[i]);
        userOf.emplace(claims_[i].node.trees.bidSub, &claims_[i]);
      }
    }
    userOf.erase(kNoBid);
    const auto isContradicted = [&](const ndb::NodeEntry& node) {
      return std::ranges::any_of(std::array{node.trees.bidData, node.trees.bidSub}, [&](Bid bid) {
        const auto user = userOf.find(bid);
        return user != userOf.end() && user->second->node.nid != node.nid && user->second->node.trees != node.trees;
      });
    };
    for (const std::size_t i : ofHurtPages_) {
      if (IsMessage(claims_[i].node.nid) && isContradicted(claims_[i].node)) claims_[i].node.nid = kNoNid;
    }
    std::erase_if(claims_, [](const NodeClaim& claim) { return claim.node.nid == kNoNid; });
  }

  static Standing StandingOf(Shade shade) {
    return shade == Shade::kLive ? Standing::kLive : shade == Shade::kDoubtful ? Standing::kDoubtful : Standing::kOlder;
  }

  // Without a header an old tree may pass for the newest. It names blocks that are freed, or there are contexts, tables
  // and lists that are newer than all that it names.
  bool IsOfNow(const FoundTree& tree, const std::vector<bool>& members) const {
    Bid highest = kNoBid;
    bool namesFreed = false;
    Paint(tree, members, [&](const TreePage&, std::span<const std::byte> bytes, Shade shade) {
      if (shade != Shade::kLive) return;
      const NbtEntry entry = DecodeNbtEntry(bytes, *evidence_.layout);
      highest = std::max({highest, Canonical(entry.bidData), Canonical(entry.bidSub)});
      namesFreed = namesFreed || StatusOf(entry.bidData) == BlockStatus::kFreed;
    });
    if (namesFreed) return false;
    for (std::size_t i = evidence_.blocks.FirstFrom(Bid{Value(highest) + 1}); i < evidence_.blocks.size(); ++i) {
      const FoundBlock block = evidence_.blocks[i];
      if (block.isNamed || block.grade == Grade::kHurt || judgement_.statuses[i] == BlockStatus::kFreed) continue;
      run_.control.PausePoint();
      const BlockKind kind = blocks_.KindOf(block);
      if (kind != BlockKind::kData && kind != BlockKind::kList) return false;
    }
    return true;
  }

  BlockStatus StatusOf(Bid bid) const {
    const std::optional<std::size_t> number = evidence_.NumberOf(bid);
    return number ? judgement_.statuses[*number] : BlockStatus::kUnknown;
  }
  bool IsNoneOrLive(Bid bid) const { return bid == kNoBid || StatusOf(bid) == BlockStatus::kLive; }
  bool IsNoneOrFound(Bid bid) const { return bid == kNoBid || evidence_.NumberOf(bid).has_value(); }

  /// All entries of one node, the newest first.
  void Settle(std::span<NodeClaim> entries) {
    const NodeClaim* leader = Leader(entries);
    const std::size_t begin = judgement_.nodes.size();
    if (leader != nullptr) judgement_.nodes.push_back(*leader);
    const Standing standingOfRest = leader != nullptr ? Standing::kOlder : Standing::kDeleted;
    const std::size_t rest = judgement_.nodes.size();
    for (const NodeClaim& entry : entries) {
      if (leader == nullptr || entry.node != leader->node) judgement_.nodes.push_back({entry.node, standingOfRest});
    }
    DropRepeated(begin, rest);
  }

  /// Old pages repeat an entry as often as they were written; the newest of equal ones stays.
  void DropRepeated(std::size_t begin, std::size_t rest) {
    auto& nodes = judgement_.nodes;
    if (nodes.size() - begin < 2) return;
    std::vector<std::size_t> order(nodes.size() - rest);
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = rest + i;
    const auto content = [&](std::size_t i) {
      return std::tuple(nodes[i].node.trees.bidData, nodes[i].node.trees.bidSub, nodes[i].node.nidParent);
    };
    std::ranges::stable_sort(order, {}, content);
    order.erase(std::ranges::unique(order, {}, content).begin(), order.end());
    std::ranges::sort(order);
    for (std::size_t i = 0; i < order.size(); ++i) nodes[rest + i] = nodes[order[i]];
    nodes.resize(rest + order.size());
  }

  const NodeClaim* Leader(std::span<NodeClaim> entries) {
    const auto live = std::ranges::find(entries, Standing::kLive, &NodeClaim::standing);
    if (live != entries.end()) {
      const bool isFreed = !judgement_.nodesAreExact && StatusOf(live->node.trees.bidData) == BlockStatus::kFreed;
      return isFreed ? nullptr : &*live;
    }
    const auto first = [&](const auto& counts) -> const NodeClaim* {
      const auto found = std::ranges::find_if(entries, [&](const NodeClaim& entry) {
        return entry.standing == Standing::kDoubtful && counts(entry.node.trees);
      });
      return found == entries.end() ? nullptr : &*found;
    };
    const auto isLive = [&](const ndb::NodeTrees& trees) {
      return IsNoneOrLive(trees.bidData) && IsNoneOrLive(trees.bidSub);
    };
    const auto isFreed = [&](Bid bid) { return StatusOf(bid) == BlockStatus::kFreed; };
    const auto isComplete = [&](const ndb::NodeTrees& trees) {
      return !isFreed(trees.bidData) && !isFreed(trees.bidSub) && complete_.IsComplete(trees);
    };
    if (const NodeClaim* best = first(isLive)) return best;
    if (const NodeClaim* best = first(isComplete)) return best;
    // Name and parent of a folder hardly ever change, so that even an older version serves.
    if (!IsFolder(NidOf(entries.front()))) return nullptr;
    return first([&](const ndb::NodeTrees& trees) { return complete_.IsComplete(trees); });
  }

  // Ids of blocks that an old page steps over are freed as a rule; what the newest node tree names is live.
  void MarkLive() {
    BlockList::Seeker seeker(evidence_.blocks);
    for (const NodeClaim& claim : judgement_.nodes) {
      if (claim.standing != Standing::kLive) continue;
      for (const Bid bid : {claim.node.trees.bidData, claim.node.trees.bidSub}) {
        if (const auto number = seeker.NumberOf(Canonical(bid))) judgement_.statuses[*number] = BlockStatus::kLive;
      }
    }
  }

  const Source& source_;
  const Evidence& evidence_;
  const std::optional<ToldByHeader>& told_;
  RunContext& run_;
  Judgement judgement_;
  EvidenceBlocks blocks_;
  CompleteNodes complete_{blocks_};
  std::vector<NodeClaim> claims_;
  std::vector<std::size_t> ofHurtPages_;  ///< of claims_, as they were collected
};

}  // namespace

Judgement JudgeNodes(const Source& source, const Evidence& evidence, const std::optional<ToldByHeader>& told,
                     RunContext& run) {
  if (evidence.layout == nullptr) return {};
  const bool fits = told && told->layout == evidence.layout;
  const std::optional<ToldByHeader> fitting = fits ? told : std::nullopt;
  return NodeJudge(source, evidence, fitting, run).Run();
}

}  // namespace velmora::engine
