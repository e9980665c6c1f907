// Writes a heap block by block.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "store/format/heap_format.h"
#include "store/ndb/block_buffer.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::ltp {

/// Where the next item of a heap goes; a value, so that a layout can be computed before it is written.
struct HeapPosition {
  std::size_t block = 0;
  std::size_t itemsEnd = kHnHdrSize;  ///< offset behind the last item of the block
  std::size_t itemCount = 0;

  /// Moves behind an item of `size` bytes, to the next block first when this one has no room for it.
  void Advance(std::size_t size);

  /// Bytes of the whole heap if it ended here.
  std::uint64_t HeapSize() const { return block * kMaxBlockData + PageMapEnd(itemsEnd, itemCount); }
};

/// Items go to the block at hand; full blocks go to the store, but block 0 and the block with the fill
/// levels of those at hand stay until the heap or their run is finished. One heap after another.
class HeapWriter {
 public:
  HeapWriter(ndb::NdbWriter& ndb, ClientSig clientSig, std::size_t maxBlocks = kMaxHeapBlocks);
  ~HeapWriter();
  HeapWriter(const HeapWriter&) = delete;
  HeapWriter& operator=(const HeapWriter&) = delete;

  /// Adds an item of 1 to kMaxHeapItem bytes. Raises kNotSupported when the heap has no block left.
  Hid Add(std::span<const std::byte> item);

  /// Overwrites the beginning of an item of block 0 that was added.
  void Patch(Hid hid, std::span<const std::byte> bytes);

  const HeapPosition& Position() const { return position_; }

  /// Writes the rest; there must be an item. Nothing refers to the tree yet. The writer is ready for the next
  /// heap afterwards.
  [[nodiscard]] ndb::DataTree Finish(Hid hidUserRoot);

  /// Gives up the heap.
  void Clear();

 private:
  ndb::BlockBuffer& Buffer() { return BufferOf(position_.block); }
  ndb::BlockBuffer& BufferOf(std::size_t block) {
    return block == 0 ? first_ : HasBitmapHdr(block) ? levels_ : current_;
  }
  void OpenBlock(std::size_t block);
  void CloseBlock(std::size_t size);
  void SetFillLevel(std::size_t block, std::uint8_t level);
  void WriteBlock(std::size_t block, std::size_t size);

  ndb::NdbWriter& ndb_;
  ClientSig clientSig_;
  std::size_t maxBlocks_;
  HeapPosition position_;
  ndb::BlockBuffer first_;                ///< block 0
  ndb::BlockBuffer levels_;               ///< the last block with a HNBITMAPHDR
  ndb::BlockBuffer current_;              ///< the block at hand, when it is none of these
  std::vector<std::uint16_t> ends_;       ///< ends of the items of the block at hand
  std::vector<std::uint16_t> firstEnds_;  ///< those of block 0, once it is not at hand any more
  std::vector<Bid> bids_;                 ///< of blocks begun so far; none for those that are not written yet
};

}  // namespace velmora::ltp
