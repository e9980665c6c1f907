// Writes a table: rows go to disk as they come.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "store/format/prop_tag.h"
#include "store/ltp/heap_writer.h"
#include "store/ltp/table_info.h"
#include "store/ltp/table_schema.h"
#include "store/ndb/data_tree_writer.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/subnode_tree_writer.h"

namespace velmora::ltp {

/// A property and its value bytes, as PropertyContextWriter takes and PropertyContext gives them.
struct PropertyView {
  PropTag tag = 0;
  std::span<const std::byte> value;
};

/// Takes rows in any order of their ids and keeps 4 bytes a row (12 in Finish), one block of rows and up to
/// three of the heap in memory.
class TableContextWriter {
 public:
  /// `schema.columns` must outlive the writer. The schema must be sound (IsSound).
  TableContextWriter(ndb::NdbWriter& ndb, const TableSchema& schema, std::size_t maxHeapBlocks = kMaxHeapBlocks);

  /// Adds a row. `cells` may be in any order; a property that the table has no column for is left out, and
  /// so are the row id and version, which the writer sets. A cell that is not given is absent. Raises kCorrupt when
  /// a value does not fit its type.
  void AddRow(std::uint32_t rowId, std::span<const PropertyView> cells);

  std::size_t RowCount() const { return rowIds_.size(); }

  /// Cells left absent because the heap, which has room for so many blocks alone, or the sub-nodes had no room for
  /// them.
  std::size_t CellsLeftOut() const { return cellsLeftOut_; }

  /// Writes the table; nothing refers to it yet. Raises kCorrupt when two rows share an id. The writer is used up.
  [[nodiscard]] ndb::WrittenNode Finish();

 private:
  void OpenHeap();
  void SetCell(const Column& column, std::span<const std::byte> value);
  [[nodiscard]] Hnid StoreValue(std::span<const std::byte> value);
  void SetExists(std::uint8_t iBit);
  [[nodiscard]] Hnid FinishMatrix();
  TableInfo Info(Hnid hnidRows) const;

  ndb::NdbWriter& ndb_;
  TableSchema schema_;
  std::size_t maxHeapBlocks_;
  HeapWriter heap_;
  ndb::DataTreeWriter matrix_;
  ndb::SubnodeTreeWriter subnodes_;
  std::uint32_t nextSubnodeIndex_;
  std::vector<std::uint32_t> rowIds_;  ///< in the order of the matrix
  std::vector<std::byte> row_;         ///< the row at hand
  std::size_t cellsLeftOut_ = 0;
};

}  // namespace velmora::ltp
