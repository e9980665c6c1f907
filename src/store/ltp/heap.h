// Reads a heap of any generation.
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
  /// kCorrupt when the tree is no heap of that kind. With `faults` (see ndb/faults.h) blocks may be missing: the items
  /// in them alone are lost.
  [[nodiscard]] static Result<Heap> Open(const ndb::BlockSource& source, Bid bidData, ClientSig clientSig,
                                         ndb::Faults* faults = nullptr);

  Hid UserRoot() const { return hidUserRoot_; }

  /// Bytes of all blocks: no walk over items of a sound heap meets more.
  std::uint64_t Size() const {
    return std::uint64_t{std::min(blocks_.BlockCount(), MaxHeapBlocks(*format_))} * format_->maxBlockData;
  }

  const Generation& Format() const { return *format_; }

  /// The block that an item is in.
  Bid BidOf(Hid hid) const { return blocks_.BidOf(BlockOf(hid, *format_)); }

  /// The bytes of an item, valid until the next call. kCorrupt when the id names no item.
  [[nodiscard]] Result<std::span<const std::byte>> Item(Hid hid);

 private:
  const Generation* format_ = &generations::kUnicode;
  std::vector<std::byte> first_;
  ndb::DataTreeReader blocks_;
  Hid hidUserRoot_ = 0;
};

}  // namespace velmora::ltp
