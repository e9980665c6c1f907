// How much data a node has, told without reading more of it than the blocks above the data.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "engine/evidence/evidence_view.h"

namespace velmora::engine {

/// Each list of sub-nodes is walked once, however many nodes share it.
class TreeSizes {
 public:
  /// `view` must outlive it.
  explicit TreeSizes(const EvidenceView& view) : view_(view) {}

  /// Bytes of data, in sub-nodes too; what is lost counts for nothing.
  std::uint64_t Of(const ndb::NodeTrees& trees) { return OfData(trees.bidData) + OfList(trees.bidSub, 0); }

 private:
  std::uint64_t OfData(Bid bid) const;
  std::uint64_t OfList(Bid bid, int depth);

  const EvidenceView& view_;
  std::unordered_map<Bid, std::uint64_t> ofList_;
};

}  // namespace velmora::engine
