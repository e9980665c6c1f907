#include "store/messaging/folders/folder_writer.h"

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context_writer.h"
#include "store/ltp/table_context_writer.h"
#include "store/messaging/tables/store_skeleton.h"
#include "store/messaging/tables/table_schemas.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

/// The properties of a folder, which are also the cells of its row in its parent's table.
PropertyBag PropertiesOf(const Folder& folder) {
  PropertyBag bag;
  // The root has no name: the property is there and empty.
  bag.PutBytes(tag::kDisplayName, std::as_bytes(std::span(folder.name)));
  bag.PutInteger32(tag::kContentCount, static_cast<std::int32_t>(folder.items.Count()));
  bag.PutInteger32(tag::kContentUnreadCount, static_cast<std::int32_t>(folder.items.UnreadCount()));
  bag.PutBoolean(tag::kSubfolders, !folder.children.empty());
  if (!folder.containerClass.empty()) {
    bag.PutBytes(tag::kContainerClass, std::as_bytes(std::span(folder.containerClass)));
  }
  bag.PutInteger32(tag::kPstHiddenCount, static_cast<std::int32_t>(folder.hiddenItems.Count()));
  bag.PutInteger32(tag::kPstHiddenUnread, static_cast<std::int32_t>(folder.hiddenItems.UnreadCount()));
  return bag;
}

ndb::WrittenNode HierarchyTable(ndb::NdbWriter& ndb, std::size_t maxHeapBlocks, Folder& folder) {
  ltp::TableContextWriter table(ndb, schema::kHierarchy, maxHeapBlocks);
  for (const Folder* child : folder.children) {
    PropertyBag row = PropertiesOf(*child);
    if (child->others.Has(tag::kContainerClass)) row.PutBytes(tag::kContainerClass, {});  // there, and empty
    table.AddRow(Value(child->nid), row.Views());
  }
  if (folder.nid == nid::kRootFolder) {
    Folder search;
    search.name = kSpamSearchFolderName;
    PropertyBag row = PropertiesOf(search);
    row.Remove(tag::kPstHiddenCount);
    row.Remove(tag::kPstHiddenUnread);
    table.AddRow(Value(nid::kSpamSearchFolder), row.Views());
  }
  folder.childCellsLeftOut = table.CellsLeftOut();
  return table.Finish();
}

ndb::WrittenNode ItemTable(ndb::NdbWriter& ndb, const ltp::TableSchema& schema, const ItemRows& items, RowSpool& rows,
                           std::size_t maxHeapBlocks, std::size_t& cellsLeftOut) {
  ltp::TableContextWriter table(ndb, schema, maxHeapBlocks);
  items.ForEach([&](const ItemRow& item) { table.AddRow(Value(item.nid), rows.Read(item.place)); });
  cellsLeftOut = table.CellsLeftOut();
  return table.Finish();
}

}  // namespace

std::size_t ValueBytesOf(std::span<const ltp::PropertyView> row) {
  constexpr std::size_t kAllocation = 4;  // the heap's word for the place of a value, and a byte for an odd end
  std::size_t bytes = 0;
  for (const ltp::PropertyView& cell : row) {
    const auto fixed = FixedSize(TypeOf(cell.tag));
    if (!fixed || *fixed > 8) bytes += cell.value.size() + kAllocation;
  }
  return bytes;
}

std::uint64_t MostBytesOf(const PropertyBag& others) {
  return others.Count() * ItemBytes(0) + 2 * others.ValueBytes();  // a long value takes whole blocks
}

std::uint64_t MostBytesOf(const Folder& folder, bool Folder::*part) {
  constexpr std::uint64_t kObject = 512;  // or a table without rows
  if (part == &Folder::itemsChanged) {
    return kObject + folder.items.Count() * ItemBytes(0) + ItemBytes(folder.items.RowBytes());
  }
  if (part == &Folder::hiddenItemsChanged) {
    return kObject + folder.hiddenItems.Count() * ItemBytes(0) + ItemBytes(folder.hiddenItems.RowBytes());
  }
  if (part == &Folder::childrenChanged) {
    return kObject + folder.children.size() * ChildBytes(0) + ChildBytes(folder.childTextBytes);
  }
  // The object goes with a table of hidden items when it is new.
  return 2 * kObject + (folder.name.size() + folder.containerClass.size()) * sizeof(char16_t) +
         MostBytesOf(folder.others);
}

void WriteFolder(ndb::NdbWriter& ndb, RowSpool& rows, const PropertyBag& extra, std::size_t maxHeapBlocks,
                 Folder& folder) {
  const auto tableNid = [&](NidType type) { return Sibling(folder.nid, type); };
  const Nid hiddenItems = tableNid(NidType::kAssocContentsTable);
  if (folder.hiddenItemsChanged || !ndb.FindNode(hiddenItems)) {
    const auto table =
        ItemTable(ndb, schema::kAssocContents, folder.hiddenItems, rows, maxHeapBlocks, folder.hiddenCellsLeftOut);
    SetWritten(ndb, hiddenItems, table);
  }
  if (folder.childrenChanged) {
    SetWritten(ndb, tableNid(NidType::kHierarchyTable), HierarchyTable(ndb, maxHeapBlocks, folder));
  }
  if (folder.itemsChanged) {
    const auto table = ItemTable(ndb, schema::kContents, folder.items, rows, maxHeapBlocks, folder.itemCellsLeftOut);
    SetWritten(ndb, tableNid(NidType::kContentsTable), table);
  }
  if (folder.propertiesChanged) {
    ltp::PropertyContextWriter node(ndb);
    PropertiesOf(folder).AddTo(node);
    folder.others.AddTo(node);
    extra.AddTo(node);
    const Nid parent = folder.parent != nullptr ? folder.parent->nid : folder.nid;
    SetWritten(ndb, folder.nid, node.Finish(), parent);
  }
  folder.propertiesChanged = folder.childrenChanged = folder.itemsChanged = folder.hiddenItemsChanged = false;
}

}  // namespace velmora::messaging
