// Reads a table of any generation.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/ltp/heap.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_info.h"
#include "store/ltp/table_schema.h"
#include "store/ndb/block_source.h"
#include "store/ndb/faults.h"
#include "text/text.h"

namespace velmora::ltp {

/// A table opened for reading; its row index is read at opening (8 bytes a row), rows on demand.
class TableContext {
 public:
  /// `source` and `faults` must outlive the reader. Raises kCorrupt when the node is no table context, and what keeps
  /// its blocks from being read. With `faults`, rows whose index entry is lost are found in the matrix, by the id that
  /// they carry; cells that are lost fail alone.
  [[nodiscard]] static TableContext Open(const ndb::BlockSource& source, const ndb::NodeTrees& node,
                                         ndb::Faults* faults = nullptr);

  std::span<const Column> Columns() const { return columns_; }

  std::size_t RowCount() const { return index_.size(); }

  /// Row id of row `row` (< RowCount()); rows are numbered by ascending id.
  std::uint32_t RowId(std::size_t row) const { return index_[row].rowId; }

  /// The number of the row of that id.
  std::optional<std::size_t> FindRow(std::uint32_t rowId) const;

  /// The value bytes of a cell; nothing when the table has no such column or the cell is absent. Raises why the row or
  /// the value is lost where it is.
  [[nodiscard]] std::optional<std::vector<std::byte>> Cell(std::size_t row, PropTag tag);

  /// The same of one of Columns(), into `out`; false for nothing. Who reads many cells so asks for memory seldom.
  [[nodiscard]] bool Cell(std::size_t row, const Column& column, std::vector<std::byte>& out);

  /// The value of a cell; nothing when it is absent, of another type or cannot be read.
  std::optional<bool> Boolean(std::size_t row, PropTag tag) { return FlagIn(ReadableCell(row, tag)); }
  std::optional<std::int32_t> Integer32(std::size_t row, PropTag tag) {
    return NumberIn<std::uint32_t>(ReadableCell(row, tag));
  }
  std::optional<std::int64_t> Integer64(std::size_t row, PropTag tag) {
    return NumberIn<std::uint64_t>(ReadableCell(row, tag));
  }
  std::optional<text::Text> Text(std::size_t row, PropTag tag) { return TextIn(ReadableCell(row, tag)); }

 private:
  struct IndexEntry {
    std::uint32_t rowId = 0;
    std::uint32_t matrixRow = 0;
  };

  TableContext(const ndb::BlockSource& source, Heap heap, Bid bidSub, ndb::Faults* faults)
      : source_(&source), heap_(std::move(heap)), bidSub_(bidSub), faults_(faults) {}

  void ReadIndex(const TableInfo& info, std::size_t matrixRows);
  void AddRowsWithoutIndex(std::size_t matrixRows);
  [[nodiscard]] std::size_t OpenMatrix(Hnid hnidRows);
  [[nodiscard]] std::optional<std::span<const std::byte>> MatrixRow(std::size_t matrixRow);
  [[nodiscard]] Failure WhyRowLost(std::size_t matrixRow);
  [[nodiscard]] std::optional<std::span<const std::byte>> StoredCell(std::size_t row, const Column& column);
  void ReadValue(const Column& column, std::span<const std::byte> stored, std::vector<std::byte>& out);
  std::optional<std::vector<std::byte>> ReadableCell(std::size_t row, PropTag tag);
  std::size_t RowsPerBlock() const { return heap_.Format().maxBlockData / rowSize_; }
  const Column* FindColumn(PropTag tag) const;

  const ndb::BlockSource* source_;
  Heap heap_;
  Bid bidSub_;
  ndb::Faults* faults_;
  std::vector<Column> columns_;
  std::size_t cebOffset_ = 0;
  std::size_t rowSize_ = 0;
  std::vector<IndexEntry> index_;    ///< by ascending row id
  std::vector<std::byte> heapRows_;  ///< the row matrix, when it lies in the heap
  ndb::DataTreeReader matrix_;       ///< else
};

}  // namespace velmora::ltp
