#include "store/ltp/table_context.h"

#include <algorithm>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ltp/heap_value.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_info.h"
#include "store/ndb/subnode_tree.h"

namespace velmora::ltp {
namespace {

constexpr std::uint64_t kMaxCell = std::uint64_t{64} << 20;

}  // namespace

Result<TableContext> TableContext::Open(const ndb::BlockSource& source, const ndb::NodeTrees& node) {
  Result<Heap> heap = Heap::Open(source, node.bidData, ClientSig::kTableContext);
  if (!heap) return tl::unexpected(heap.error());
  const Result<std::span<const std::byte>> infoBytes = heap->Item(heap->UserRoot());
  if (!infoBytes) return tl::unexpected(infoBytes.error());
  Result<TableInfo> info = DecodeTableInfo(*infoBytes);
  if (!info) return tl::unexpected(info.error());
  const Result<std::vector<std::byte>> index = ReadBth(*heap, info->hidRowIndex, kRowIndexLayout, kMaxRows);
  if (!index) return tl::unexpected(index.error());

  TableContext table(source, std::move(*heap), node.bidSub);
  table.columns_ = std::move(info->columns);
  table.cebOffset_ = info->rgib[2];
  table.rowSize_ = info->rgib[3];
  const Result<std::size_t> matrixRows = table.OpenMatrix(info->hnidRows);
  if (!matrixRows) return tl::unexpected(matrixRows.error());
  // A row that the index places outside the matrix is left out.
  for (std::size_t at = 0; at < index->size(); at += kRowIndexLayout.LeafRecord()) {
    const IndexEntry entry{Load<std::uint32_t>(*index, at), Load<std::uint32_t>(*index, at + 4)};
    if (entry.matrixRow < *matrixRows) table.index_.push_back(entry);
  }
  std::stable_sort(table.index_.begin(), table.index_.end(),
                   [](const IndexEntry& a, const IndexEntry& b) { return a.rowId < b.rowId; });
  return table;
}

// Returns the number of rows in the matrix.
Result<std::size_t> TableContext::OpenMatrix(Hnid hnidRows) {
  if (hnidRows == 0) return 0;
  if (IsHid(hnidRows)) {
    const Result<std::span<const std::byte>> rows = heap_.Item(hnidRows);
    if (!rows) return tl::unexpected(rows.error());
    heapRows_.assign(rows->begin(), rows->end());
    return heapRows_.size() / rowSize_;
  }
  const auto subnode = ndb::FindSubnode(*source_, bidSub_, Nid{hnidRows});
  if (!subnode) return tl::unexpected(subnode.error());
  if (!*subnode) return Corrupt(Named("sub-node", hnidRows), hnidRows, "the row matrix is not there");
  Result<ndb::DataTreeReader> matrix = ndb::DataTreeReader::Open(*source_, (*subnode)->trees.bidData);
  if (!matrix) return tl::unexpected(matrix.error());
  matrix_ = std::move(*matrix);
  if (matrix_.BlockCount() == 0) return 0;
  const Result<std::span<const std::byte>> last = matrix_.Block(matrix_.BlockCount() - 1);
  if (!last) return tl::unexpected(last.error());
  return (matrix_.BlockCount() - 1) * RowsPerBlock() + last->size() / rowSize_;
}

std::optional<std::size_t> TableContext::FindRow(std::uint32_t rowId) const {
  const auto entry = std::lower_bound(index_.begin(), index_.end(), rowId,
                                      [](const IndexEntry& e, std::uint32_t id) { return e.rowId < id; });
  if (entry == index_.end() || entry->rowId != rowId) return std::nullopt;
  return static_cast<std::size_t>(entry - index_.begin());
}

const Column* TableContext::FindColumn(PropTag tag) const {
  const auto column = std::find_if(columns_.begin(), columns_.end(), [tag](const Column& c) { return c.tag == tag; });
  return column == columns_.end() ? nullptr : &*column;
}

// The bytes of a row, valid until the next call.
Result<std::span<const std::byte>> TableContext::Row(std::size_t row) {
  if (row >= index_.size()) return Corrupt("table", row, "the table has no such row");
  const std::size_t matrixRow = index_[row].matrixRow;
  std::span<const std::byte> rows = heapRows_;
  std::size_t within = matrixRow;
  if (heapRows_.empty()) {
    const Result<std::span<const std::byte>> block = matrix_.Block(matrixRow / RowsPerBlock());
    if (!block) return block;
    rows = *block;
    within = matrixRow % RowsPerBlock();
  }
  if ((within + 1) * rowSize_ > rows.size()) return Corrupt("table", row, "a block of rows is not full");
  return rows.subspan(within * rowSize_, rowSize_);
}

Result<std::optional<std::vector<std::byte>>> TableContext::Cell(std::size_t row, PropTag tag) {
  const Column* column = FindColumn(tag);
  if (column == nullptr) return std::nullopt;
  const Result<std::span<const std::byte>> bytes = Row(row);
  if (!bytes) return tl::unexpected(bytes.error());
  if (!HasCell(*bytes, cebOffset_, column->iBit)) return std::nullopt;
  const auto cell = bytes->subspan(column->ibData, column->cbData);
  const std::optional<std::size_t> size = FixedSize(TypeOf(tag));
  if (size && *size == column->cbData) return std::vector<std::byte>(cell.begin(), cell.end());
  Result<std::vector<std::byte>> value = ReadHnid(*source_, heap_, bidSub_, Load<std::uint32_t>(cell, 0), kMaxCell);
  if (!value) return tl::unexpected(value.error());
  return std::move(*value);
}

template <class T>
std::optional<T> TableContext::Number(std::size_t row, PropTag tag) {
  const auto value = Cell(row, tag);
  if (!value || !*value || (*value)->size() != sizeof(T)) return std::nullopt;
  return Load<T>(**value, 0);
}

std::optional<bool> TableContext::Boolean(std::size_t row, PropTag tag) {
  const std::optional<std::uint8_t> number = Number<std::uint8_t>(row, tag);
  if (!number) return std::nullopt;
  return *number != 0;
}

std::optional<std::int32_t> TableContext::Integer32(std::size_t row, PropTag tag) {
  return Number<std::uint32_t>(row, tag);
}

std::optional<std::int64_t> TableContext::Integer64(std::size_t row, PropTag tag) {
  return Number<std::uint64_t>(row, tag);
}

std::optional<text::Text> TableContext::Text(std::size_t row, PropTag tag) {
  const auto value = Cell(row, tag);
  if (!value || !*value) return std::nullopt;
  return DecodeText(**value);
}

}  // namespace velmora::ltp
