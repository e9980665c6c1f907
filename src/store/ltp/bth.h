// A tree on a heap: records of a key and a datum by ascending key.
//
//   header  0 bType 0xB5 | 1 cbKey u8 | 2 cbEnt u8 | 3 bIdxLevels u8 | 4 hidRoot u32
//   leaves  {key, datum} ...    index levels  {first key of the child, child HID u32} ...
//
// hidRoot is 0 when there are no records, and the leaf itself when there are no index levels.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "store/format/heap_format.h"
#include "store/format/prop_tag.h"
#include "store/ltp/heap.h"
#include "store/ltp/heap_writer.h"

namespace velmora::ltp {

inline constexpr std::size_t kBthHeaderSize = 8;

/// Sizes of key and datum in bytes.
struct BthLayout {
  std::uint8_t cbKey = 0;
  std::uint8_t cbEnt = 0;

  constexpr std::size_t LeafRecord() const { return std::size_t{cbKey} + cbEnt; }
  constexpr std::size_t IndexRecord() const { return std::size_t{cbKey} + 4; }
};

inline constexpr BthLayout kPropertyLayout{kPropertyKeySize, kPropertyDataSize};

/// Of the row index of a table: row id, and the row's number in the matrix.
constexpr BthLayout RowIndexLayout(const Generation& generation) { return {4, generation.rowNumberSize}; }
inline constexpr BthLayout kRowIndexLayout = RowIndexLayout(generations::kUnicode);

/// Keys are distinct, so there are no more properties than ids. Rows have no limit but the room of their heap.
inline constexpr std::size_t kMaxProperties = 0x10000;
inline constexpr std::size_t kMaxRows = SIZE_MAX;

/// Writes record `index` into `out`.
using EncodeRecord = std::function<void(std::size_t index, std::span<std::byte> out)>;

/// Writes `count` records by ascending key into a heap and then their tree's header over `hidHeader`, an item
/// of kBthHeaderSize bytes in block 0.
void WriteBth(HeapWriter& heap, Hid hidHeader, const BthLayout& layout, std::size_t count, const EncodeRecord& encode);

/// Moves `position` behind the items that WriteBth writes for `count` records.
void AdvanceOverBth(HeapPosition& position, const BthLayout& layout, std::size_t count);

/// All records of a tree, back to back, as they stand. Raises kCorrupt when the tree has another layout, does not fit
/// into its heap or has more than `maxRecords`; with `faults`, for the first of these alone: items that cannot be read
/// are left out. Each block of the heap is read once for a level.
[[nodiscard]] std::vector<std::byte> ReadBth(Heap& heap, Hid hidHeader, const BthLayout& layout, std::size_t maxRecords,
                                             ndb::Faults* faults = nullptr);

}  // namespace velmora::ltp
