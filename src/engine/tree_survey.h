// What the trees of a node amount to, without reading more of them than the blocks above the data.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "engine/evidence_view.h"

namespace velmora::engine {

struct TreeFacts {
  std::uint64_t size = 0;  ///< bytes of data, in sub-nodes too
  bool isWhole = true;     ///< every block is there with its content proven
};

/// Each tree is walked once, however many nodes share it.
class TreeSurvey {
 public:
  /// `view` must outlive it.
  explicit TreeSurvey(const EvidenceView& view) : view_(view) {}

  TreeFacts Of(const ndb::NodeTrees& trees) {
    TreeFacts all = OfData(trees.bidData, 0);
    Add(all, OfList(trees.bidSub, 0));
    return all;
  }

 private:
  static void Add(TreeFacts& all, const TreeFacts& more) {
    all.size += more.size;
    all.isWhole = all.isWhole && more.isWhole;
  }
  TreeFacts OfData(Bid bid, int level);
  TreeFacts OfList(Bid bid, int depth);
  bool IsProven(Bid bid) const;

  const EvidenceView& view_;
  std::unordered_map<Bid, TreeFacts> known_;  ///< of the internal blocks
};

}  // namespace velmora::engine
