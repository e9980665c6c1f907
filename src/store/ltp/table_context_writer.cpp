#include "store/ltp/table_context_writer.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <utility>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ltp/property_value.h"
#include "store/ltp/table_info.h"

namespace velmora::ltp {
namespace {

constexpr Hid kRowIndexHid = MakeHid(0, 1);
constexpr Hid kTableInfoHid = MakeHid(0, 2);
constexpr Nid kMatrixNid = MakeNid(NidType::kLtp, 1);

/// Larger matrices go to a sub-node.
constexpr std::size_t kHeapMatrixLimit = 1024;

/// Heap blocks that the row index of so many rows needs at most.
std::size_t IndexBlocks(std::size_t rows) {
  const std::size_t rowsPerBlock = 2 * (kMaxHeapItem / kRowIndexLayout.LeafRecord());
  return rows / rowsPerBlock + rows / (rowsPerBlock * 200) + 4;
}

}  // namespace

TableContextWriter::TableContextWriter(ndb::NdbWriter& ndb, const TableSchema& schema, std::size_t maxHeapBlocks)
    : ndb_(ndb),
      schema_(schema),
      maxHeapBlocks_(maxHeapBlocks),
      heap_(ndb, ClientSig::kTableContext, maxHeapBlocks),
      matrix_(ndb),
      subnodes_(ndb),
      nextSubnodeIndex_(kFirstFreeNidIndex),
      row_(schema.RowSize()) {
  assert(IsSound(schema));
}

void TableContextWriter::AddRow(std::uint32_t rowId, std::span<const PropertyView> cells) {
  OpenHeap();
  std::fill(row_.begin(), row_.end(), std::byte{0});
  Store<std::uint32_t>(row_, 0, rowId);
  Store<std::uint32_t>(row_, 4, ndb_.NewRowVersion());
  SetExists(0);
  SetExists(1);
  for (const PropertyView& cell : cells) {
    const auto column = std::lower_bound(schema_.columns.begin(), schema_.columns.end(), cell.tag,
                                         [](const Column& c, PropTag tag) { return c.tag < tag; });
    if (column == schema_.columns.end() || column->tag != cell.tag || column->iBit < 2) continue;
    SetCell(*column, cell.value);
  }
  // Rows do not cross blocks: the rest of a full block is filled before the next row.
  const std::size_t rowsPerBlock = kMaxBlockData / row_.size();
  if (!rowIds_.empty() && rowIds_.size() % rowsPerBlock == 0) {
    static constexpr std::array<std::byte, 1024> kZeros{};
    const std::size_t gap = kMaxBlockData - rowsPerBlock * row_.size();
    matrix_.Append(std::span(kZeros).first(gap));
  }
  matrix_.Append(row_);
  rowIds_.push_back(rowId);
}

void TableContextWriter::SetCell(const Column& column, std::span<const std::byte> value) {
  CheckValue(column.tag, value);
  const std::size_t cebOffset = schema_.rgib[2];
  if (HasCell(row_, cebOffset, column.iBit)) {
    RaiseCorrupt({ObjectKind::kProperty, column.tag}, column.tag, "a row has two cells of one column");
  }
  const std::optional<std::size_t> size = FixedSize(TypeOf(column.tag));
  if (size && *size == column.cbData) {
    std::memcpy(row_.data() + column.ibData, value.data(), value.size());
    SetExists(column.iBit);
    return;
  }
  const Hnid hnid = value.empty() ? 0 : StoreValue(value);
  if (hnid == 0 && !value.empty()) {
    ++cellsLeftOut_;
    return;
  }
  Store<std::uint32_t>(row_, column.ibData, hnid);
  SetExists(column.iBit);
}

Hnid TableContextWriter::StoreValue(std::span<const std::byte> value) {
  if (value.size() <= kMaxHeapItem) {
    // The index comes last and must find room.
    if (heap_.Position().block + 1 + IndexBlocks(rowIds_.size() + 1) >= maxHeapBlocks_) return 0;
    return heap_.Add(value);
  }
  if (subnodes_.Count() + 1 >= ndb::SubnodeTreeWriter::kMaxEntries) return 0;  // one is the matrix
  const ndb::DataTree tree = ndb_.WriteData(value);
  const Nid nid = MakeNid(NidType::kLtp, nextSubnodeIndex_++);
  subnodes_.Add(nid, {{tree.bid}, tree.size});
  return Value(nid);
}

void TableContextWriter::SetExists(std::uint8_t iBit) {
  row_[schema_.rgib[2] + iBit / 8u] |= std::byte(0x80 >> iBit % 8);
}

ndb::WrittenNode TableContextWriter::Finish() {
  OpenHeap();
  const Hnid hnidRows = FinishMatrix();

  struct IndexEntry {
    std::uint32_t rowId;
    std::uint32_t matrixRow;
  };
  std::vector<IndexEntry> index;
  index.reserve(rowIds_.size());
  for (const std::uint32_t rowId : rowIds_) index.push_back({rowId, static_cast<std::uint32_t>(index.size())});
  std::sort(index.begin(), index.end(), [](const auto& a, const auto& b) { return a.rowId < b.rowId; });
  const auto twin =
      std::adjacent_find(index.begin(), index.end(), [](const auto& a, const auto& b) { return a.rowId == b.rowId; });
  if (twin != index.end()) RaiseCorrupt({ObjectKind::kRow, twin->rowId}, twin->rowId, "two rows share an id");
  const auto encode = [&index](std::size_t i, std::span<std::byte> out) {
    Store<std::uint32_t>(out, 0, index[i].rowId);
    Store<std::uint32_t>(out, 4, index[i].matrixRow);
  };
  WriteBth(heap_, kRowIndexHid, kRowIndexLayout, index.size(), encode);
  heap_.Patch(kTableInfoHid, Encode(Info(hnidRows)));
  const ndb::DataTree data = heap_.Finish(kTableInfoHid);
  const ndb::SubnodeTree subnodes = subnodes_.Finish();
  return {{data.bid, subnodes.bid}, data.size + subnodes.dataSize};
}

Hnid TableContextWriter::FinishMatrix() {
  if (rowIds_.empty()) return 0;
  if (matrix_.Size() <= kHeapMatrixLimit) {
    const Hid hid = heap_.Add(matrix_.Buffered());
    matrix_.Clear();
    return hid;
  }
  const ndb::DataTree tree = matrix_.Finish();
  subnodes_.Add(kMatrixNid, {{tree.bid}, tree.size});
  return Value(kMatrixNid);
}

// The two items that others refer to by number come first; both are written again at the end.
void TableContextWriter::OpenHeap() {
  if (heap_.Position().itemCount > 0) return;
  heap_.Add(std::array<std::byte, kBthHeaderSize>{});
  heap_.Add(Encode(Info(0)));
}

TableInfo TableContextWriter::Info(Hnid hnidRows) const {
  return {schema_.rgib, kRowIndexHid, hnidRows, {schema_.columns.begin(), schema_.columns.end()}};
}

}  // namespace velmora::ltp
