#include "store/messaging/folder_writer.h"

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/property_context_writer.h"
#include "store/ltp/table_context_writer.h"
#include "store/messaging/conversation_id.h"
#include "store/messaging/store_skeleton.h"
#include "store/messaging/stored_text.h"
#include "store/messaging/table_schemas.h"

namespace velmora::messaging {
namespace {

/// The properties of a folder, which are also the cells of its row in its parent's table.
PropertyBag PropertiesOf(const Folder& folder) {
  PropertyBag bag;
  // The root has no name: the property is there and empty.
  bag.PutBytes(tag::kDisplayName, std::as_bytes(std::span(folder.name)));
  bag.PutInteger32(tag::kContentCount, static_cast<std::int32_t>(folder.items.Count()));
  bag.PutInteger32(tag::kContentUnreadCount, static_cast<std::int32_t>(folder.unreadCount));
  bag.PutBoolean(tag::kSubfolders, !folder.children.empty());
  bag.PutText(tag::kContainerClass, folder.containerClass);
  bag.PutInteger32(tag::kPstHiddenCount, 0);
  bag.PutInteger32(tag::kPstHiddenUnread, 0);
  return bag;
}

Result<ndb::WrittenNode> HierarchyTable(ndb::NdbWriter& ndb, std::size_t maxHeapBlocks, Folder& folder) {
  ltp::TableContextWriter table(ndb, schema::kHierarchy, maxHeapBlocks);
  for (const Folder* child : folder.children) {
    if (auto added = table.AddRow(Value(child->nid), PropertiesOf(*child).Views()); !added)
      return tl::unexpected(added.error());
  }
  if (folder.nid == nid::kRootFolder) {
    Folder search;
    search.name = kSpamSearchFolderName;
    PropertyBag row = PropertiesOf(search);
    row.Remove(tag::kPstHiddenCount);
    row.Remove(tag::kPstHiddenUnread);
    if (auto added = table.AddRow(Value(nid::kSpamSearchFolder), row.Views()); !added)
      return tl::unexpected(added.error());
  }
  folder.childCellsLeftOut = table.CellsLeftOut();
  return table.Finish();
}

Result<ndb::WrittenNode> ContentsTable(ndb::NdbWriter& ndb, RowSpool& rows, std::size_t maxHeapBlocks, Folder& folder) {
  ltp::TableContextWriter table(ndb, schema::kContents, maxHeapBlocks);
  Result<void> result;
  folder.items.ForEach([&](const ItemRow& item) {
    if (!result) return;
    const auto row = rows.Read(item.place);
    if (!row) {
      result = tl::unexpected(row.error());
    } else {
      result = table.AddRow(Value(item.nid), *row);
    }
  });
  if (!result) return tl::unexpected(result.error());
  folder.itemCellsLeftOut = table.CellsLeftOut();
  return table.Finish();
}

Result<void> Set(ndb::NdbWriter& ndb, Nid nid, const Result<ndb::WrittenNode>& node, Nid parent = kNoNid) {
  if (!node) return tl::unexpected(node.error());
  return ndb.SetNode(nid, node->trees, parent);
}

}  // namespace

PropertyBag ContentsRow(const PropertyBag& message) {
  PropertyBag row;
  for (const ltp::Column& column : schema::kContents.columns) {
    if (column.tag == tag::kLtpRowId || column.tag == tag::kLtpRowVer || !message.Has(column.tag)) continue;
    const auto value = message.Value(column.tag);
    // A subject is as long as the message's, whose limit leaves out the two characters before it.
    const bool isCut = TypeOf(column.tag) == PropType::kString && column.tag != tag::kSubject;
    if (isCut && value.size() > kNameLimit * sizeof(char16_t)) {
      const text::Text text = ltp::DecodeText(value);
      row.PutText(column.tag, CutToCharacters(text, kNameLimit));
    } else {
      row.PutBytes(column.tag, value);
    }
  }
  row.PutInteger32(tag::kMessageStatus, 0);
  const text::Text topic = ltp::DecodeText(message.Value(tag::kConversationTopic));
  if (const auto id = ConversationIdOf(topic)) row.PutBytes(tag::kConversationId, *id);
  return row;
}

std::size_t ValueBytesOf(std::span<const ltp::PropertyView> row) {
  constexpr std::size_t kAllocation = 4;  // the heap's word for the place of a value, and a byte for an odd end
  std::size_t bytes = 0;
  for (const ltp::PropertyView& cell : row) {
    const auto fixed = FixedSize(TypeOf(cell.tag));
    if (!fixed || *fixed > 8) bytes += cell.value.size() + kAllocation;
  }
  return bytes;
}

std::uint64_t MostBytesOf(const Folder& folder, bool Folder::*part) {
  constexpr std::uint64_t kObject = 512;  // or a table without rows
  if (part == &Folder::itemsChanged) {
    return kObject + folder.items.Count() * ItemBytes(0) + ItemBytes(folder.rowBytes);
  }
  if (part == &Folder::childrenChanged) {
    return kObject + folder.children.size() * ChildBytes(0) + ChildBytes(folder.childTextBytes);
  }
  // The object goes with a table of hidden items when it is new.
  return 2 * kObject + (folder.name.size() + folder.containerClass.size()) * sizeof(char16_t);
}

Result<void> WriteFolder(ndb::NdbWriter& ndb, RowSpool& rows, const PropertyBag& extra, std::size_t maxHeapBlocks,
                         Folder& folder) {
  const auto tableNid = [&](NidType type) { return Sibling(folder.nid, type); };
  const Nid hiddenItems = tableNid(NidType::kAssocContentsTable);
  if (!ndb.FindNode(hiddenItems)) {
    ltp::TableContextWriter table(ndb, schema::kAssocContents);
    if (auto set = Set(ndb, hiddenItems, table.Finish()); !set) return set;
  }
  if (folder.childrenChanged) {
    const auto table = HierarchyTable(ndb, maxHeapBlocks, folder);
    if (auto set = Set(ndb, tableNid(NidType::kHierarchyTable), table); !set) return set;
  }
  if (folder.itemsChanged) {
    const auto table = ContentsTable(ndb, rows, maxHeapBlocks, folder);
    if (auto set = Set(ndb, tableNid(NidType::kContentsTable), table); !set) return set;
  }
  if (folder.propertiesChanged) {
    ltp::PropertyContextWriter node(ndb);
    PropertiesOf(folder).AddTo(node);
    extra.AddTo(node);
    const Nid parent = folder.parent != nullptr ? folder.parent->nid : folder.nid;
    if (auto set = Set(ndb, folder.nid, node.Finish(), parent); !set) return set;
  }
  folder.propertiesChanged = folder.childrenChanged = folder.itemsChanged = false;
  return {};
}

}  // namespace velmora::messaging
