// Reads a heap.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "store/format/heap_format.h"
#include "store/ndb/block_source.h"
#include "store/ndb/data_tree_reader.h"

namespace velmora::ltp {

/// A heap opened for reading. Block 0 and the block read last are kept.
class Heap {
 public:
  /// kCorrupt when the tree is no heap of that kind.
  static Result<Heap> Open(const ndb::BlockSource& source, Bid bidData, ClientSig clientSig);

  Hid UserRoot() const { return hidUserRoot_; }

  /// Bytes of all blocks: no walk over items of a sound heap meets more.
  std::uint64_t Size() const { return std::min(blocks_.BlockCount(), kMaxHeapBlocks) * kMaxBlockData; }

  /// The bytes of an item, valid until the next call. kCorrupt when the id names no item.
  Result<std::span<const std::byte>> Item(Hid hid);

 private:
  std::vector<std::byte> first_;
  ndb::DataTreeReader blocks_;
  Hid hidUserRoot_ = 0;
};

}  // namespace velmora::ltp
