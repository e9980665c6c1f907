#include "engine/evidence/complete_nodes.h"

#include <vector>

#include "store/format/block.h"

namespace velmora::engine {
namespace {

/// Sub-nodes nest, and each level may be a list over lists.
constexpr int kMostDepth = 128;

}  // namespace

bool CompleteNodes::IsTreeComplete(Bid bid, int depth) {
  if (bid == kNoBid) return true;
  if (!IsInternal(bid)) return blocks_.IsTrusted(bid);
  if (depth == kMostDepth) return false;
  const auto [at, isNew] = known_.try_emplace(Canonical(bid), false);  // one that leads back to itself is not complete
  if (!isNew) return at->second;
  std::vector<std::byte> bytes;
  if (!blocks_.IsTrusted(bid) || !blocks_.TryBlock(bid, bytes)) return false;
  const InternalBlock list(bytes, blocks_.Format());
  bool isComplete = list.IsKnown() && list.EntryCount() == list.Head().cEnt;
  ForEachReference(list, [&](Bid child) { isComplete = isComplete && IsTreeComplete(child, depth + 1); });
  return known_[Canonical(bid)] = isComplete;
}

}  // namespace velmora::engine
