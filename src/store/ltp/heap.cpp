#include "store/ltp/heap.h"

#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora::ltp {

Result<Heap> Heap::Open(const ndb::BlockSource& source, Bid bidData, ClientSig clientSig, ndb::Faults* faults) {
  Heap heap;
  heap.format_ = &source.Format();
  Result<ndb::DataTreeReader> blocks = ndb::DataTreeReader::Open(source, bidData, faults);
  if (!blocks) return tl::unexpected(blocks.error());
  heap.blocks_ = std::move(*blocks);
  const Result<std::span<const std::byte>> first = heap.blocks_.Block(0);
  if (!first) return tl::unexpected(first.error());
  heap.first_.assign(first->begin(), first->end());
  if (heap.first_.size() < kHnHdrSize || heap.first_[2] != std::byte{kHeapSig}) {
    return Corrupt("heap", Value(bidData), "the node holds no heap");
  }
  if (heap.first_[3] != static_cast<std::byte>(clientSig)) {
    return Corrupt("heap", std::to_integer<std::uint64_t>(heap.first_[3]), "the heap holds something else");
  }
  heap.hidUserRoot_ = Load<std::uint32_t>(heap.first_, 4);
  return heap;
}

Result<std::span<const std::byte>> Heap::Item(Hid hid) {
  std::span<const std::byte> block = first_;
  if (const std::uint32_t index = BlockOf(hid, *format_); index != 0) {
    const Result<std::span<const std::byte>> other = blocks_.Block(index);
    if (!other) return other;
    block = *other;
  }
  const std::size_t ibHnpm = Load<std::uint16_t>(block, 0);
  const std::size_t cAlloc = Load<std::uint16_t>(block, ibHnpm);
  const std::size_t item = ItemOf(hid, *format_);
  if (!IsHid(hid) || item == 0 || item > cAlloc || ibHnpm + 4 + 2 * (item + 1) > block.size()) {
    return Corrupt(Named("heap item", hid), hid, "the heap has no such item");
  }
  const std::size_t start = Load<std::uint16_t>(block, ibHnpm + 4 + 2 * (item - 1));
  const std::size_t end = Load<std::uint16_t>(block, ibHnpm + 4 + 2 * item);
  if (start > end || end > block.size()) return Corrupt(Named("heap item", hid), end, "the item leaves its block");
  return block.subspan(start, end - start);
}

}  // namespace velmora::ltp
