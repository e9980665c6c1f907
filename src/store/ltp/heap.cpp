#include "store/ltp/heap.h"

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::ltp {

Heap Heap::Open(const ndb::BlockSource& source, Bid bidData, ClientSig clientSig, ndb::Faults* faults) {
  Heap heap;
  heap.format_ = &source.Format();
  heap.blocks_ = ndb::DataTreeReader::Open(source, bidData, faults);
  heap.first_ = heap.blocks_.TakeBlock(0);
  const std::span<const std::byte> first = heap.first_;
  if (first.size() < kHnHdrSize || first[2] != std::byte{kHeapSig}) {
    RaiseCorrupt(ObjectKind::kHeap, Value(bidData), "the node holds no heap");
  }
  if (first[3] != static_cast<std::byte>(clientSig)) {
    RaiseCorrupt(ObjectKind::kHeap, std::to_integer<std::uint64_t>(first[3]), "the heap holds something else");
  }
  heap.hidUserRoot_ = Load<std::uint32_t>(first, 4);
  return heap;
}

std::span<const std::byte> Heap::Item(Hid hid) {
  if (const auto item = Find(hid)) return *item;
  throw FailureError(WhyLost(hid));
}

std::optional<std::span<const std::byte>> Heap::Find(Hid hid) {
  std::span<const std::byte> block = first_;
  if (const std::uint32_t index = BlockOf(hid, *format_); index != 0) {
    if (blocks_.WhyLost(index)) return std::nullopt;
    block = blocks_.Block(index);
  }
  const std::size_t ibHnpm = Load<std::uint16_t>(block, 0);
  const std::size_t cAlloc = Load<std::uint16_t>(block, ibHnpm);
  const std::size_t item = ItemOf(hid, *format_);
  if (!IsHid(hid) || item == 0 || item > cAlloc || ibHnpm + 4 + 2 * (item + 1) > block.size()) return std::nullopt;
  const std::size_t start = Load<std::uint16_t>(block, ibHnpm + 4 + 2 * (item - 1));
  const std::size_t end = Load<std::uint16_t>(block, ibHnpm + 4 + 2 * item);
  if (start > end || end > block.size()) return std::nullopt;
  return block.subspan(start, end - start);
}

Failure Heap::WhyLost(Hid hid) {
  const std::uint32_t index = BlockOf(hid, *format_);
  if (index != 0 && blocks_.WhyLost(index)) return *blocks_.WhyLost(index);
  return Corrupt({ObjectKind::kHeapItem, hid}, hid, "the heap has no such item");
}

void ReadHnid(const ndb::BlockSource& source, Heap& heap, Bid bidSub, Hnid hnid, std::uint64_t limit,
              ndb::Faults* faults, std::vector<std::byte>& out) {
  if (hnid == 0) return out.clear();
  if (IsHid(hnid)) {
    const std::span<const std::byte> item = heap.Item(hnid);
    return out.assign(item.begin(), item.end());
  }
  const auto subnode = ndb::FindSubnode(source, bidSub, Nid{hnid});
  if (!subnode) RaiseCorrupt({ObjectKind::kSubnode, hnid}, hnid, "the value's sub-node is not there");
  out = ndb::DataTreeReader::Open(source, subnode->trees.bidData, faults).ReadAll(limit);
}

}  // namespace velmora::ltp
