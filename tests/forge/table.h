// Table contexts: the tables that list a folder's sub-folders and messages, a message's recipients and
// attachments.
#pragma once

#include <cstdint>
#include <vector>

#include "forge/context.h"
#include "forge/property.h"
#include "forge/store.h"

namespace velmora::forge {

struct Column {
  std::uint16_t id;
  std::uint16_t type;
};

/// The columns of the tables that every store has, besides row id and row version.
const std::vector<Column>& HierarchyColumns();
const std::vector<Column>& ContentsColumns();
const std::vector<Column>& AssociatedColumns();
const std::vector<Column>& SearchColumns();
const std::vector<Column>& AttachmentColumns();
const std::vector<Column>& RecipientColumns();

/// A row: its id, and the properties from which the cells are taken. A property without a column is left
/// out, a column without a property stays empty.
struct Row {
  std::uint32_t id = 0;
  PropertyList cells;
};

/// Forms a table and puts its large values and, if it is too large for the heap, its row matrix into the
/// store. Row versions come from the store. Columns that hold texts become 8-bit in an ANSI store.
Context FormTable(Store& store, const std::vector<Column>& columns, const std::vector<Row>& rows);

/// Forms a table and adds it as a node without parent.
void AddTableNode(Store& store, Nid nid, const std::vector<Column>& columns, const std::vector<Row>& rows);

/// The properties of a list that have a column, for a row that is kept until its table is formed.
PropertyList CellsOf(const std::vector<Column>& columns, PropertyList properties);

}  // namespace velmora::forge
