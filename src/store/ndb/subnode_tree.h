// The sub-nodes of a node: a sorted list of node ids with their trees, in SLBLOCKs of 340 entries, and a
// SIBLOCK above when one does not hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "store/ndb/block_source.h"

namespace velmora::ndb {

class NdbWriter;

/// A node or sub-node that was written and that nothing refers to yet.
struct WrittenNode {
  NodeTrees trees{};
  std::uint64_t dataSize = 0;  ///< sum of the cb of all data blocks, those of all sub-nodes included
};

struct SubnodeEntry {
  Nid nid{};
  NodeTrees trees{};
  friend bool operator==(const SubnodeEntry&, const SubnodeEntry&) = default;
};

/// A finished sub-node tree.
struct SubnodeTree {
  Bid bid{};                   ///< 0 for no sub-nodes
  std::uint64_t dataSize = 0;  ///< sum of the sub-nodes' dataSize
};

/// Collects sub-nodes in any order and writes them by ascending id.
class SubnodeTreeWriter {
 public:
  static constexpr std::size_t kMaxEntries = 340 * 510;

  explicit SubnodeTreeWriter(NdbWriter& ndb) : ndb_(ndb) {}

  /// `node.trees` may already belong to another node: trees are shared. bidData must not be 0.
  void Add(Nid nid, const WrittenNode& node);

  std::size_t Count() const { return entries_.size(); }

  /// Writes the blocks and refers to the trees of all entries. kCorrupt when two entries share an id,
  /// kNotSupported above kMaxEntries. The writer is empty again afterwards.
  Result<SubnodeTree> Finish();

  /// Forgets what was added.
  void Clear();

 private:
  NdbWriter& ndb_;
  std::vector<SubnodeEntry> entries_;
  std::uint64_t dataSize_ = 0;
};

/// All sub-nodes below `bidSub` (0 gives none), in the order of the tree. kCorrupt when a block is no
/// SLBLOCK or SIBLOCK or its numbers do not fit.
Result<std::vector<SubnodeEntry>> ListSubnodes(const BlockSource& source, Bid bidSub);

/// One sub-node below `bidSub`; nothing when it is not there.
Result<std::optional<SubnodeEntry>> FindSubnode(const BlockSource& source, Bid bidSub, Nid nid);

/// Sum of the cb of all data blocks of a node and of all its sub-nodes, recursively. kCorrupt when sub-nodes
/// nest deeper than 64 levels.
Result<std::uint64_t> DataSizeOf(const BlockSource& source, const NodeTrees& trees);

}  // namespace velmora::ndb
