// What the search for lost nodes looks at: the blocks, what is known of each, and the nodes that are known already.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "engine/evidence/evidence.h"

namespace velmora::engine {

class EvidenceView {
 public:
  /// All must outlive the view.
  EvidenceView(const EvidenceBlocks& blocks, const Evidence& evidence, const Judgement& judgement)
      : blocks_(blocks), evidence_(evidence), judgement_(judgement) {
    for (const NodeClaim& claim : judgement.nodes) {
      if (IsInUse(claim.standing)) userOf_.emplace(Canonical(claim.node.trees.bidData), &claim);
    }
  }

  const EvidenceBlocks& Blocks() const { return blocks_; }
  const Evidence& Found() const { return evidence_; }
  const Judgement& Judged() const { return judgement_; }
  const Generation& Format() const { return blocks_.Format(); }

  /// kUnknown of a block that was not found.
  BlockStatus StatusOf(Bid bid) const {
    const std::optional<std::size_t> number = evidence_.NumberOf(bid);
    return number ? judgement_.statuses[*number] : BlockStatus::kUnknown;
  }
  bool IsFreed(Bid bid) const { return StatusOf(bid) == BlockStatus::kFreed; }

  /// Whether a node that is in use has its data there.
  bool IsDataInUse(Bid bid) const { return UserOf(bid) != nullptr; }

  /// The first node that is in use and has its data there; null where there is none.
  const NodeClaim* UserOf(Bid bid) const {
    const auto user = userOf_.find(Canonical(bid));
    return user == userOf_.end() ? nullptr : user->second;
  }

  /// The claims to an id, the one in use first.
  std::span<const NodeClaim> ClaimsOf(Nid nid) const {
    const auto claims =
        std::ranges::equal_range(judgement_.nodes, nid, {}, [](const NodeClaim& c) { return c.node.nid; });
    return {claims.begin(), claims.end()};
  }

  /// The claim to an id that is in use; null where there is none.
  const NodeClaim* InUse(Nid nid) const {
    const std::span<const NodeClaim> claims = ClaimsOf(nid);
    return !claims.empty() && IsInUse(claims.front().standing) ? &claims.front() : nullptr;
  }

 private:
  const EvidenceBlocks& blocks_;
  const Evidence& evidence_;
  const Judgement& judgement_;
  std::unordered_map<Bid, const NodeClaim*> userOf_;
};

}  // namespace velmora::engine
