#include "store/ltp/bth.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora::ltp {
namespace {

constexpr std::size_t kMaxIndexLevels = 8;

constexpr std::size_t MaxRecords(std::size_t recordSize) { return kMaxHeapItem / recordSize; }
static_assert(MaxRecords(kPropertyLayout.LeafRecord()) == 447 && MaxRecords(kPropertyLayout.IndexRecord()) == 596);
static_assert(MaxRecords(kRowIndexLayout.LeafRecord()) == 447 && MaxRecords(kRowIndexLayout.IndexRecord()) == 447);

/// Writes one level: `count` records into as many items as they need, whose ids go to `items`.
void WriteLevel(HeapWriter& heap, std::size_t recordSize, std::size_t count, const EncodeRecord& encode,
                std::vector<Hid>& items) {
  std::array<std::byte, kMaxHeapItem> item;
  for (std::size_t first = 0; first < count; first += MaxRecords(recordSize)) {
    const std::size_t here = std::min(count - first, MaxRecords(recordSize));
    for (std::size_t i = 0; i < here; ++i) {
      encode(first + i, std::span(item).subspan(i * recordSize, recordSize));
    }
    items.push_back(heap.Add(std::span(item).first(here * recordSize)));
  }
}

}  // namespace

void WriteBth(HeapWriter& heap, Hid hidHeader, const BthLayout& layout, std::size_t count, const EncodeRecord& encode) {
  std::vector<Hid> items;
  WriteLevel(heap, layout.LeafRecord(), count, encode, items);
  // Record `r` of index level 1 begins with the key of leaf record r * span; of the next level, of
  // r * span * (records of an index item), and so on.
  std::size_t span = MaxRecords(layout.LeafRecord());
  std::uint8_t bIdxLevels = 0;
  std::array<std::byte, kMaxHeapItem> leafRecord;
  while (items.size() > 1) {
    const std::vector<Hid> children = std::exchange(items, {});
    const auto encodeIndex = [&](std::size_t index, std::span<std::byte> out) {
      const auto record = std::span(leafRecord).first(layout.LeafRecord());
      encode(index * span, record);
      std::copy_n(record.begin(), layout.cbKey, out.begin());
      Store<std::uint32_t>(out, layout.cbKey, children[index]);
    };
    WriteLevel(heap, layout.IndexRecord(), children.size(), encodeIndex, items);
    span *= MaxRecords(layout.IndexRecord());
    ++bIdxLevels;
  }
  std::array<std::byte, kBthHeaderSize> header;
  Store<std::uint8_t>(header, 0, static_cast<std::uint8_t>(ClientSig::kBTree));
  Store<std::uint8_t>(header, 1, layout.cbKey);
  Store<std::uint8_t>(header, 2, layout.cbEnt);
  Store<std::uint8_t>(header, 3, bIdxLevels);
  Store<std::uint32_t>(header, 4, items.empty() ? 0 : items[0]);
  heap.Patch(hidHeader, header);
}

void AdvanceOverBth(HeapPosition& position, const BthLayout& layout, std::size_t count) {
  std::size_t recordSize = layout.LeafRecord();
  while (count > 0) {
    std::size_t items = 0;
    for (std::size_t left = count; left > 0; ++items) {
      const std::size_t here = std::min(left, MaxRecords(recordSize));
      position.Advance(here * recordSize);
      left -= here;
    }
    count = items > 1 ? items : 0;
    recordSize = layout.IndexRecord();
  }
}

namespace {

/// The walk over a tree, a level at a time: its items are read in the order of their blocks, so no block is read twice
/// for one level, and put together in the order of the tree.
class BthWalk {
 public:
  BthWalk(Heap& heap, const BthLayout& layout, std::size_t maxRecords, ndb::Faults* faults)
      : heap_(heap), layout_(layout), faults_(faults), recordsLeft_(maxRecords), bytesLeft_(heap.Size()) {}

  std::vector<std::byte> Read(Hid root, std::size_t levels) {
    std::vector<Hid> items{root};
    for (;; --levels) {
      std::vector<std::byte> records = ReadLevel(items, levels);
      if (levels == 0) return records;
      items.clear();
      for (std::size_t at = 0; at < records.size(); at += layout_.IndexRecord()) {
        items.push_back(Load<std::uint32_t>(records, at + layout_.cbKey));
      }
    }
  }

 private:
  /// The records of all items of a level, in the order of the items.
  std::vector<std::byte> ReadLevel(std::span<const Hid> items, std::size_t level) {
    if (items.size() == 1) {  // nearly all
      std::vector<std::byte> records;
      if (auto fault = ReadItem(items[0], level, records)) ndb::Note(faults_, std::move(*fault));
      return records;
    }
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return items[i]; });
    std::vector<std::vector<std::byte>> contents(items.size());
    for (const std::size_t i : order) {
      if (auto fault = ReadItem(items[i], level, contents[i])) ndb::Note(faults_, std::move(*fault));
    }
    std::vector<std::byte> records;
    for (const std::vector<std::byte>& content : contents) {
      records.insert(records.end(), content.begin(), content.end());
    }
    return records;
  }

  // No item of a sound tree is met twice, so more bytes than the heap has mean that one is.
  std::optional<Failure> ReadItem(Hid hid, std::size_t level, std::vector<std::byte>& content) {
    const auto item = heap_.Find(hid);
    if (!item) return heap_.WhyLost(hid);
    const std::size_t recordSize = level == 0 ? layout_.LeafRecord() : layout_.IndexRecord();
    const std::size_t count = item->size() / recordSize;
    const std::size_t size = count * recordSize;
    if (size == 0 || size > bytesLeft_) {
      return Corrupt({ObjectKind::kHeapItem, hid}, item->size(), "an item of the tree is empty or met twice");
    }
    bytesLeft_ -= size;
    if (level == 0) {
      if (count > recordsLeft_) return Corrupt({ObjectKind::kHeapItem, hid}, count, "the tree has too many records");
      recordsLeft_ -= count;
    }
    content.assign(item->begin(), item->begin() + static_cast<std::ptrdiff_t>(size));
    return std::nullopt;
  }

  Heap& heap_;
  const BthLayout layout_;
  ndb::Faults* faults_;
  std::size_t recordsLeft_;
  std::uint64_t bytesLeft_;
};

}  // namespace

std::vector<std::byte> ReadBth(Heap& heap, Hid hidHeader, const BthLayout& layout, std::size_t maxRecords,
                               ndb::Faults* faults) {
  const std::span<const std::byte> header = heap.Item(hidHeader);
  if (header.size() < kBthHeaderSize || header[0] != static_cast<std::byte>(ClientSig::kBTree) ||
      header[1] != std::byte{layout.cbKey} || header[2] != std::byte{layout.cbEnt}) {
    RaiseCorrupt({ObjectKind::kHeapItem, hidHeader}, hidHeader, "no header of a tree of that layout");
  }
  const std::size_t levels = Load<std::uint8_t>(header, 3);
  const auto root = Load<std::uint32_t>(header, 4);
  if (levels > kMaxIndexLevels) {
    RaiseCorrupt({ObjectKind::kHeapItem, hidHeader}, levels, "the tree has too many levels");
  }
  if (root == 0) return {};
  return BthWalk(heap, layout, maxRecords, faults).Read(root, levels);
}

}  // namespace velmora::ltp
