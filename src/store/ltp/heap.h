// Reads a heap of any generation, and the values that lie in it or in sub-nodes beside it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/format/heap_format.h"
#include "store/ndb/block_source.h"
#include "store/ndb/data_tree_reader.h"

namespace velmora::ltp {

/// A heap opened for reading. Block 0 and the block read last are kept.
class Heap {
 public:
  /// Raises kCorrupt when the tree is no heap of that kind. With `faults` (see ndb/faults.h) blocks may be missing: the
  /// items in them alone are lost.
  [[nodiscard]] static Heap Open(const ndb::BlockSource& source, Bid bidData, ClientSig clientSig,
                                 ndb::Faults* faults = nullptr);

  Hid UserRoot() const { return hidUserRoot_; }

  /// Bytes of all blocks: no walk over items of a sound heap meets more.
  std::uint64_t Size() const {
    return std::uint64_t{std::min(blocks_.BlockCount(), MaxHeapBlocks(*format_))} * format_->maxBlockData;
  }

  const Generation& Format() const { return *format_; }

  /// The bytes of an item, valid until the next call. Raises kCorrupt when the id names no item, and why its block is
  /// lost where that is so.
  [[nodiscard]] std::span<const std::byte> Item(Hid hid);

  /// The same; nothing where Item raises WhyLost.
  [[nodiscard]] std::optional<std::span<const std::byte>> Find(Hid hid);
  [[nodiscard]] Failure WhyLost(Hid hid);

 private:
  const Generation* format_ = &generations::kUnicode;
  std::vector<std::byte> first_;
  ndb::DataTreeReader blocks_;
  Hid hidUserRoot_ = 0;
};

/// Replaces `out` by the bytes that `hnid` names in a node with that heap and those sub-nodes; none for 0. Raises
/// kNotSupported when there are more than `limit`, and why they are lost where they are. With `faults`, what is lost of
/// a sub-node's bytes reads as zeros.
void ReadHnid(const ndb::BlockSource& source, Heap& heap, Bid bidSub, Hnid hnid, std::uint64_t limit,
              ndb::Faults* faults, std::vector<std::byte>& out);

}  // namespace velmora::ltp
