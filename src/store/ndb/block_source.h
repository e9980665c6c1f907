// Where blocks and nodes are read from: a store on disk, the store that is being written, or an index of
// blocks made in another way.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "store/format/failures.h"
#include "store/format/ids.h"

namespace velmora::ndb {

/// The two trees of a node or sub-node; 0 where there is none.
struct NodeTrees {
  Bid bidData{};
  Bid bidSub{};
  friend bool operator==(const NodeTrees&, const NodeTrees&) = default;
};

/// A node as the node tree lists it.
struct NodeEntry {
  Nid nid{};
  NodeTrees trees{};
  Nid nidParent{};  ///< the containing folder of folders and messages, else 0
  friend bool operator==(const NodeEntry&, const NodeEntry&) = default;
};

class BlockSource {
 public:
  virtual ~BlockSource() = default;

  /// Replaces `out` by the content of a block, decoded and without trailer; 1 to 8176 bytes. Bit 0 of `bid`
  /// is ignored. kNotFound when the store has no such block, kCorrupt when its trailer does not fit.
  virtual Result<void> ReadBlock(Bid bid, std::vector<std::byte>& out) const = 0;

  /// The node of that id, or nothing.
  virtual std::optional<NodeEntry> FindNode(Nid nid) const = 0;
};

}  // namespace velmora::ndb
