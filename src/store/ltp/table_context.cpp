#include "store/ltp/table_context.h"

#include <algorithm>
#include <unordered_set>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ltp/heap_value.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_info.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::ltp {
namespace {

constexpr std::uint64_t kMaxCell = std::uint64_t{64} << 20;

}  // namespace

Result<TableContext> TableContext::Open(const ndb::BlockSource& source, const ndb::NodeTrees& node,
                                        ndb::Faults* faults) {
  Result<Heap> heap = Heap::Open(source, node.bidData, ClientSig::kTableContext, faults);
  if (!heap) return tl::unexpected(heap.error());
  const Result<std::span<const std::byte>> infoBytes = heap->Item(heap->UserRoot());
  if (!infoBytes) return tl::unexpected(infoBytes.error());
  Result<TableInfo> info = DecodeTableInfo(*infoBytes, source.Format());
  if (!info) return tl::unexpected(info.error());

  TableContext table(source, std::move(*heap), node.bidSub, faults);
  table.columns_ = std::move(info->columns);
  table.cebOffset_ = info->rgib[2];
  table.rowSize_ = info->rgib[3];
  const Result<std::size_t> matrixRows = table.OpenMatrix(info->hnidRows);
  if (!matrixRows) {
    if (auto noted = ndb::Tolerate(faults, node.bidSub, matrixRows.error()); !noted) {
      return tl::unexpected(noted.error());
    }
  }
  if (auto read = table.ReadIndex(*info, matrixRows.value_or(0)); !read) return tl::unexpected(read.error());
  return table;
}

Result<void> TableContext::ReadIndex(const TableInfo& info, std::size_t matrixRows) {
  const BthLayout layout = RowIndexLayout(heap_.Format());
  const std::size_t faultsBefore = faults_ != nullptr ? faults_->Count() : 0;
  Result<std::vector<std::byte>> index = ReadBth(heap_, info.hidRowIndex, layout, kMaxRows, faults_);
  if (!index) {
    if (auto noted = ndb::Tolerate(faults_, heap_.BidOf(info.hidRowIndex), index.error()); !noted) return noted;
    index = std::vector<std::byte>{};
  }
  // A row that the index places outside the matrix is left out.
  for (std::size_t at = 0; at < index->size(); at += layout.LeafRecord()) {
    const std::uint32_t number =
        layout.cbEnt == 2 ? Load<std::uint16_t>(*index, at + 4) : Load<std::uint32_t>(*index, at + 4);
    if (number < matrixRows) index_.push_back({Load<std::uint32_t>(*index, at), number});
  }
  if (faults_ != nullptr && faults_->Count() != faultsBefore) AddRowsWithoutIndex(matrixRows);
  std::ranges::stable_sort(index_, {}, &IndexEntry::rowId);
  return {};
}

// Rows that have gone stay in the matrix, and nothing but the index tells them from the others; so this is for tables
// whose index is damaged.
void TableContext::AddRowsWithoutIndex(std::size_t matrixRows) {
  const Column* rowId = FindColumn(tag::kLtpRowId);
  if (rowId == nullptr) return;
  std::vector<bool> hasEntry(matrixRows);
  std::unordered_set<std::uint32_t> ids;
  for (const IndexEntry& entry : index_) {
    hasEntry[entry.matrixRow] = true;
    ids.insert(entry.rowId);
  }
  for (std::size_t matrixRow = 0; matrixRow < matrixRows; ++matrixRow) {
    if (hasEntry[matrixRow]) continue;
    const Result<std::span<const std::byte>> row = MatrixRow(matrixRow);
    if (!row) {
      faults_->Add(matrix_.BidOf(matrixRow / RowsPerBlock()), row.error());
      continue;
    }
    const auto id = Load<std::uint32_t>(*row, rowId->ibData);
    if (ids.insert(id).second) index_.push_back({id, static_cast<std::uint32_t>(matrixRow)});
  }
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
  Result<ndb::DataTreeReader> matrix = ndb::DataTreeReader::Open(*source_, (*subnode)->trees.bidData, faults_);
  if (!matrix) return tl::unexpected(matrix.error());
  matrix_ = std::move(*matrix);
  if (matrix_.BlockCount() == 0) return 0;
  const std::size_t inFullBlocks = (matrix_.BlockCount() - 1) * RowsPerBlock();
  const Result<std::span<const std::byte>> last = matrix_.Block(matrix_.BlockCount() - 1);
  if (last) return inFullBlocks + last->size() / rowSize_;
  if (auto noted = ndb::Tolerate(faults_, matrix_.BidOf(matrix_.BlockCount() - 1), last.error()); !noted) {
    return tl::unexpected(noted.error());
  }
  // The rows of a last block that is lost are known by the size of the matrix, and by the index.
  const std::uint64_t full = heap_.Format().maxBlockData;
  const std::uint64_t ahead = (matrix_.BlockCount() - 1) * full;
  const std::uint64_t rest = matrix_.Size() > ahead ? std::min(matrix_.Size() - ahead, full) : 0;
  return inFullBlocks + static_cast<std::size_t>(rest) / rowSize_;
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
Result<std::span<const std::byte>> TableContext::MatrixRow(std::size_t matrixRow) {
  std::span<const std::byte> rows = heapRows_;
  std::size_t within = matrixRow;
  if (heapRows_.empty()) {
    const Result<std::span<const std::byte>> block = matrix_.Block(matrixRow / RowsPerBlock());
    if (!block) return block;
    rows = *block;
    within = matrixRow % RowsPerBlock();
  }
  if ((within + 1) * rowSize_ > rows.size()) return Corrupt("table", matrixRow, "a block of rows is not full");
  return rows.subspan(within * rowSize_, rowSize_);
}

Result<std::optional<std::vector<std::byte>>> TableContext::Cell(std::size_t row, PropTag tag) {
  const Column* column = FindColumn(tag);
  if (column == nullptr) return std::nullopt;
  if (row >= index_.size()) return Corrupt("table", row, "the table has no such row");
  const Result<std::span<const std::byte>> bytes = MatrixRow(index_[row].matrixRow);
  if (!bytes) return tl::unexpected(bytes.error());
  if (!HasCell(*bytes, cebOffset_, column->iBit)) return std::nullopt;
  const auto cell = bytes->subspan(column->ibData, column->cbData);
  const std::optional<std::size_t> size = FixedSize(TypeOf(tag));
  if (size && *size == column->cbData) return std::vector<std::byte>(cell.begin(), cell.end());
  Result<std::vector<std::byte>> value =
      ReadHnid(*source_, heap_, bidSub_, Load<std::uint32_t>(cell, 0), kMaxCell, faults_);
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
