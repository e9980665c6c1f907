// Whether all blocks of a node are there.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "engine/evidence/evidence.h"

namespace velmora::engine {

/// Looks at each list of blocks once, however many nodes lead to it.
class CompleteNodes {
 public:
  /// `blocks` must outlive it.
  explicit CompleteNodes(const EvidenceBlocks& blocks) : blocks_(blocks) {}

  /// Whether every block of its data and of its sub-nodes is whole.
  bool IsComplete(const ndb::NodeTrees& trees) {
    return IsTreeComplete(trees.bidData, 0) && IsTreeComplete(trees.bidSub, 0);
  }

 private:
  bool IsTreeComplete(Bid bid, int depth);

  const EvidenceBlocks& blocks_;
  std::unordered_map<Bid, bool> known_;
};

}  // namespace velmora::engine
