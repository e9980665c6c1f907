// What a table tells of itself before its rows are read, and which list of sub-nodes belongs to it.
//
// The rows stand in the heap of the table or, if they are many, in a sub-node. A list belongs to a table when it holds
// what the table has beside its heap, and each row that the table's index names carries the id that the index gives it.
// The second half is needed: the rows of every table have the same few ids of sub-nodes. Of several such lists one that
// is not freed counts, then the newest, since rows are rewritten more often than the heap.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "engine/evidence/subnode_lists.h"
#include "store/ltp/table_context.h"

namespace velmora::engine {

/// What the rows are.
enum class TableKind : std::uint8_t {
  kOther,
  kHierarchy,  ///< folders
  kContents,   ///< messages
  kHidden,     ///< hidden items of a folder
  kSearch,     ///< what a search found, in several folders
};

struct TableShape {
  TableKind kind = TableKind::kOther;  ///< kOther without rows: empty tables are all alike
  std::vector<Nid> rows;               ///< by ascending id
  std::optional<Nid> beside;           ///< a sub-node that the table needs
};

/// Nothing when the heap is no table.
std::optional<TableShape> ReadShape(const EvidenceView& view, Bid bid);

/// A table that is open, tolerant of what is lost.
class OpenTable {
 public:
  /// Nothing when it cannot be read at all.
  static std::optional<OpenTable> Open(const EvidenceView& view, const ndb::NodeTrees& trees);

  ltp::TableContext& Rows() { return *table_; }
  bool IsWhole() const { return faults_->Count() == 0; }

  /// The column of a property, whatever its type; 0 where there is none.
  PropTag ColumnOf(std::uint16_t id) const;

  /// A text cell, of whatever width; empty where there is none.
  text::Text Text(std::size_t row, std::uint16_t id);

 private:
  std::unique_ptr<ndb::Faults> faults_;
  std::optional<ltp::TableContext> table_;
};

/// `named` are the lists that node entries give the table. kNoBid when it needs none, or none fits.
Bid ListOfTable(const EvidenceView& view, Bid bid, const TableShape& shape, std::span<const Bid> named,
                const SubnodeLists& lists);

}  // namespace velmora::engine
