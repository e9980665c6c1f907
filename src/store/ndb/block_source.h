// Where blocks and nodes are read from: a store on disk, the store that is being written, or an index of
// blocks made in another way.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "store/format/failures.h"
#include "store/format/generation.h"
#include "store/format/ids.h"

namespace velmora::ndb {

/// The two trees of a node or sub-node; 0 where there is none.
struct NodeTrees {
  Bid bidData{};
  Bid bidSub{};
  friend bool operator==(const NodeTrees&, const NodeTrees&) = default;
};

/// A data tree: a data block, an XBLOCK over data blocks or an XXBLOCK over XBLOCKs.
struct DataTree {
  Bid bid{};               ///< kNoBid for no bytes
  std::uint64_t size = 0;  ///< bytes
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

  /// What the blocks are formed by.
  virtual const Generation& Format() const = 0;

  /// Replaces `out` by the content of a block, decoded, inflated and without trailer; it has at least one byte and
  /// no more than a block of the format. Bit 0 of `bid` is ignored. Raises (FailureError) kNotFound when the store has
  /// no such block, kCorrupt when its trailer does not fit, and what the system says where it cannot be read.
  void ReadBlock(Bid bid, std::vector<std::byte>& out) const {
    if (!FindBlock(bid, out)) throw FailureError(NoSuchBlock(bid));
  }

  /// The same, but for a block that the store does not have: false then, at no more cost than a look-up.
  [[nodiscard]] virtual bool FindBlock(Bid bid, std::vector<std::byte>& out) const = 0;

  /// The same, but false for a block that cannot be read, whatever the cause.
  [[nodiscard]] bool TryBlock(Bid bid, std::vector<std::byte>& out) const {
    return IfReadable([&] { return FindBlock(bid, out); }).value_or(false);
  }

  /// Bytes of content of a data block, where the source knows it without reading it.
  virtual std::optional<std::size_t> SizeOf(Bid) const { return std::nullopt; }

  static Failure NoSuchBlock(Bid bid) {
    return {FailureKind::kNotFound, {ObjectKind::kBlock, bid}, Value(bid), "the store has no such block"};
  }

  /// The node of that id, or nothing.
  virtual std::optional<NodeEntry> FindNode(Nid nid) const = 0;
};

}  // namespace velmora::ndb
