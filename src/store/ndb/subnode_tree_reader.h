// Reads the sub-nodes of a node: a list of node ids with their trees in one or more SLBLOCKs, below a SIBLOCK when
// there are several. A tolerant reader leaves out the entries of a block that is lost.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "store/ndb/block_source.h"
#include "store/ndb/faults.h"

namespace velmora::ndb {

struct SubnodeEntry {
  Nid nid{};
  NodeTrees trees{};
  friend bool operator==(const SubnodeEntry&, const SubnodeEntry&) = default;
};

/// All sub-nodes below `bidSub` (kNoBid gives none), in the order of the tree. Raises kCorrupt when a block is no
/// SLBLOCK or SIBLOCK or its numbers do not fit; a tolerant reader fails for the root alone.
[[nodiscard]] std::vector<SubnodeEntry> ListSubnodes(const BlockSource& source, Bid bidSub, Faults* faults = nullptr);

/// One sub-node below `bidSub`; nothing when it is not there. Raises what the strict ListSubnodes does.
[[nodiscard]] std::optional<SubnodeEntry> FindSubnode(const BlockSource& source, Bid bidSub, Nid nid);

/// Sum of the cb of all data blocks of a node and of all its sub-nodes, each tree counted wherever it is shared.
/// Raises kCorrupt when sub-nodes nest deeper than 64 levels.
[[nodiscard]] std::uint64_t DataSizeOf(const BlockSource& source, const NodeTrees& trees);

}  // namespace velmora::ndb
