#include "engine/tree_survey.h"

#include <vector>

#include "store/format/block.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

constexpr TreeFacts kLost = {.size = 0, .isWhole = false};
constexpr int kMostListLevels = 2;  ///< of lists above the data
constexpr int kDeepest = 64;        ///< of sub-nodes below sub-nodes

}  // namespace

bool TreeSurvey::IsProven(Bid bid) const {
  const FoundBlock* block = view_.Found().Find(bid);
  return block != nullptr && (block->grade == Grade::kProven || block->grade == Grade::kMoved);
}

TreeFacts TreeSurvey::OfData(Bid bid, int level) {
  if (bid == kNoBid) return {};
  const FoundBlock* block = view_.Found().Find(bid);
  if (block == nullptr || level > kMostListLevels) return kLost;
  if (!IsInternal(bid)) {
    TreeFacts facts{block->cb, IsProven(bid)};
    // Below a list the sizes do not matter: it tells their sum. A packed block tells its size when it is unpacked.
    if (std::vector<std::byte> content; level == 0 && view_.Format().offInflatedSize != 0) {
      facts.size = view_.Blocks().TryBlock(bid, content) ? content.size() : 0;
    }
    return facts;
  }
  if (const auto known = known_.find(Canonical(bid)); known != known_.end()) return known->second;
  std::vector<std::byte> content;
  if (!view_.Blocks().TryBlock(bid, content)) return kLost;
  const InternalBlock list(content, view_.Format());
  TreeFacts facts{list.Head().lcbTotal, list.IsKnown() && IsProven(bid)};
  ForEachReference(list, [&](Bid child) { facts.isWhole = facts.isWhole && OfData(child, level + 1).isWhole; });
  return known_[Canonical(bid)] = facts;
}

TreeFacts TreeSurvey::OfList(Bid bid, int depth) {
  if (bid == kNoBid) return {};
  if (depth > kDeepest) return kLost;
  if (const auto known = known_.find(Canonical(bid)); known != known_.end()) return known->second;
  std::vector<std::byte> content;
  ndb::Faults faults;
  if (!view_.Blocks().TryBlock(bid, content)) return kLost;
  const auto entries = IfReadable([&] { return ndb::ListSubnodes(view_.Blocks(), bid, &faults); });
  if (!entries) return kLost;
  TreeFacts facts{0, IsProven(bid) && faults.Count() == 0};
  if (const InternalBlock list(content, view_.Format()); list.Head().cLevel != 0) {
    ForEachReference(list, [&](Bid below) { facts.isWhole = facts.isWhole && IsProven(below); });
  }
  known_[Canonical(bid)] = kLost;  // a list that leads to itself is no whole one
  for (const ndb::SubnodeEntry& entry : *entries) {
    Add(facts, OfData(entry.trees.bidData, 0));
    Add(facts, OfList(entry.trees.bidSub, depth + 1));
  }
  return known_[Canonical(bid)] = facts;
}

}  // namespace velmora::engine
