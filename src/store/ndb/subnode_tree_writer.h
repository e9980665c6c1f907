// Writes the sub-nodes of a node: a sorted list of node ids with their trees, in SLBLOCKs of 340 entries, and a SIBLOCK
// above when one does not hold them.
#pragma once

#include <cstdint>
#include <vector>

#include "store/format/block.h"
#include "store/ndb/block_source.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::ndb {

/// A node or sub-node that was written and that nothing refers to yet.
struct WrittenNode {
  NodeTrees trees{};
  std::uint64_t dataSize = 0;  ///< sum of the cb of all data blocks, those of all sub-nodes included
};

/// A finished sub-node tree.
struct SubnodeTree {
  Bid bid{};                   ///< kNoBid for no sub-nodes
  std::uint64_t dataSize = 0;  ///< sum of the sub-nodes' dataSize
};

/// Collects sub-nodes in any order and writes them by ascending id.
class SubnodeTreeWriter {
 public:
  static constexpr std::size_t kMaxEntries = kMaxSlEntries * kMaxSiEntries;

  explicit SubnodeTreeWriter(NdbWriter& ndb) : ndb_(ndb) {}

  /// `node.trees` may already belong to another node: trees are shared. Its bidData must be a block.
  void Add(Nid nid, const WrittenNode& node);

  std::size_t Count() const { return entries_.size(); }

  /// Writes the blocks and refers to the trees of all entries. kCorrupt when two entries share an id,
  /// kNotSupported above kMaxEntries. The writer is empty again afterwards.
  [[nodiscard]] SubnodeTree Finish();

  /// Forgets what was added.
  void Clear();

 private:
  NdbWriter& ndb_;
  std::vector<SubnodeEntry> entries_;
  std::uint64_t dataSize_ = 0;
};

}  // namespace velmora::ndb
