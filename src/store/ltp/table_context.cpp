#include "store/ltp/table_context.h"

#include <algorithm>
#include <unordered_set>

#include "store/format/failures.h"
#include "store/format/little_endian.h"
#include "store/ltp/bth.h"
#include "store/ltp/table_info.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::ltp {
namespace {

constexpr std::uint64_t kMaxCell = std::uint64_t{64} << 20;

/// Whether the value stands in the row itself.
bool IsWhole(const Column& column) { return FixedSize(TypeOf(column.tag)) == column.cbData; }

}  // namespace

TableContext TableContext::Open(const ndb::BlockSource& source, const ndb::NodeTrees& node, ndb::Faults* faults) {
  Heap heap = Heap::Open(source, node.bidData, ClientSig::kTableContext, faults);
  TableInfo info = DecodeTableInfo(heap.Item(heap.UserRoot()), source.Format());
  TableContext table(source, std::move(heap), node.bidSub, faults);
  table.columns_ = std::move(info.columns);
  table.cebOffset_ = info.rgib[2];
  table.rowSize_ = info.rgib[3];
  std::size_t matrixRows = 0;
  ndb::Tolerate(faults, [&] { matrixRows = table.OpenMatrix(info.hnidRows); });
  table.ReadIndex(info, matrixRows);
  return table;
}

void TableContext::ReadIndex(const TableInfo& info, std::size_t matrixRows) {
  const BthLayout layout = RowIndexLayout(heap_.Format());
  const std::size_t faultsBefore = faults_ != nullptr ? faults_->Count() : 0;
  std::vector<std::byte> index;
  ndb::Tolerate(faults_, [&] { index = ReadBth(heap_, info.hidRowIndex, layout, kMaxRows, faults_); });
  // A row that the index places outside the matrix is left out.
  for (std::size_t at = 0; at < index.size(); at += layout.LeafRecord()) {
    const std::uint32_t number =
        layout.cbEnt == 2 ? Load<std::uint16_t>(index, at + 4) : Load<std::uint32_t>(index, at + 4);
    if (number < matrixRows) index_.push_back({Load<std::uint32_t>(index, at), number});
  }
  if (faults_ != nullptr && faults_->Count() != faultsBefore) AddRowsWithoutIndex(matrixRows);
  std::ranges::stable_sort(index_, {}, &IndexEntry::rowId);
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
    const auto row = MatrixRow(matrixRow);
    if (!row) {
      faults_->Add(WhyRowLost(matrixRow));
      continue;
    }
    const auto id = Load<std::uint32_t>(*row, rowId->ibData);
    if (ids.insert(id).second) index_.push_back({id, static_cast<std::uint32_t>(matrixRow)});
  }
}

// Returns the number of rows in the matrix.
std::size_t TableContext::OpenMatrix(Hnid hnidRows) {
  if (hnidRows == 0) return 0;
  if (IsHid(hnidRows)) {
    const std::span<const std::byte> rows = heap_.Item(hnidRows);
    heapRows_.assign(rows.begin(), rows.end());
    return heapRows_.size() / rowSize_;
  }
  const auto subnode = ndb::FindSubnode(*source_, bidSub_, Nid{hnidRows});
  if (!subnode) RaiseCorrupt({ObjectKind::kSubnode, hnidRows}, hnidRows, "the row matrix is not there");
  matrix_ = ndb::DataTreeReader::Open(*source_, subnode->trees.bidData, faults_);
  if (matrix_.BlockCount() == 0) return 0;
  const std::size_t last = matrix_.BlockCount() - 1;
  const std::optional<Failure>& why = matrix_.WhyLost(last);
  if (!why) return last * RowsPerBlock() + matrix_.Block(last).size() / rowSize_;
  ndb::Note(faults_, *why);
  // The rows of a last block that is lost are known by the size of the matrix, and by the index.
  const std::uint64_t full = heap_.Format().maxBlockData;
  const std::uint64_t ahead = last * full;
  const std::uint64_t rest = matrix_.Size() > ahead ? std::min(matrix_.Size() - ahead, full) : 0;
  return last * RowsPerBlock() + static_cast<std::size_t>(rest) / rowSize_;
}

std::optional<std::size_t> TableContext::FindRow(std::uint32_t rowId) const {
  const auto entry = std::ranges::lower_bound(index_, rowId, {}, &IndexEntry::rowId);
  if (entry == index_.end() || entry->rowId != rowId) return std::nullopt;
  return static_cast<std::size_t>(entry - index_.begin());
}

const Column* TableContext::FindColumn(PropTag tag) const {
  const auto column = std::ranges::find(columns_, tag, &Column::tag);
  return column == columns_.end() ? nullptr : &*column;
}

// The bytes of a row, valid until the next call; nothing when it is lost.
std::optional<std::span<const std::byte>> TableContext::MatrixRow(std::size_t matrixRow) {
  std::span<const std::byte> rows = heapRows_;
  std::size_t within = matrixRow;
  if (heapRows_.empty()) {
    if (matrix_.WhyLost(matrixRow / RowsPerBlock())) return std::nullopt;
    rows = matrix_.Block(matrixRow / RowsPerBlock());
    within = matrixRow % RowsPerBlock();
  }
  if ((within + 1) * rowSize_ > rows.size()) return std::nullopt;
  return rows.subspan(within * rowSize_, rowSize_);
}

Failure TableContext::WhyRowLost(std::size_t matrixRow) {
  if (heapRows_.empty()) {
    if (const std::optional<Failure>& why = matrix_.WhyLost(matrixRow / RowsPerBlock())) return *why;
  }
  return Corrupt(ObjectKind::kTable, matrixRow, "a block of rows is not full");
}

// The bytes of a cell within its row, valid until the next call; nothing when it is absent, or the row is lost.
std::optional<std::span<const std::byte>> TableContext::StoredCell(std::size_t row, const Column& column) {
  const auto bytes = MatrixRow(index_[row].matrixRow);
  if (!bytes || !HasCell(*bytes, cebOffset_, column.iBit)) return std::nullopt;
  return bytes->subspan(column.ibData, column.cbData);
}

void TableContext::ReadValue(const Column& column, std::span<const std::byte> stored, std::vector<std::byte>& out) {
  if (IsWhole(column)) return out.assign(stored.begin(), stored.end());
  ReadHnid(*source_, heap_, bidSub_, Load<std::uint32_t>(stored, 0), kMaxCell, faults_, out);
}

std::optional<std::vector<std::byte>> TableContext::Cell(std::size_t row, PropTag tag) {
  const Column* column = FindColumn(tag);
  std::vector<std::byte> value;
  if (column == nullptr || !Cell(row, *column, value)) return std::nullopt;
  return value;
}

bool TableContext::Cell(std::size_t row, const Column& column, std::vector<std::byte>& out) {
  if (row >= index_.size()) RaiseCorrupt(ObjectKind::kTable, row, "the table has no such row");
  if (const auto stored = StoredCell(row, column)) {
    ReadValue(column, *stored, out);
    return true;
  }
  const std::size_t matrixRow = index_[row].matrixRow;
  if (!MatrixRow(matrixRow)) throw FailureError(WhyRowLost(matrixRow));
  return false;
}

// The same for readers that take what is lost for absent. The common losses are found without raising.
std::optional<std::vector<std::byte>> TableContext::ReadableCell(std::size_t row, PropTag tag) {
  const Column* column = FindColumn(tag);
  if (column == nullptr || row >= index_.size()) return std::nullopt;
  const auto stored = StoredCell(row, *column);
  if (!stored) return std::nullopt;
  const Hnid hnid = IsWhole(*column) ? 0 : Load<std::uint32_t>(*stored, 0);
  if (hnid != 0 && IsHid(hnid) && !heap_.Find(hnid)) return std::nullopt;
  return IfReadable([&] {
    std::vector<std::byte> value;
    ReadValue(*column, *stored, value);
    return value;
  });
}

}  // namespace velmora::ltp
