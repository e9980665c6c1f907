#include "store/messaging/tables/store_skeleton.h"

#include <span>

#include "store/format/little_endian.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context_writer.h"
#include "store/ltp/table_context_writer.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/tables/table_schemas.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

struct EmptyTable {
  Nid nid;
  const ltp::TableSchema& schema;
};

constexpr EmptyTable kEmptyTables[] = {
    {nid::kHierarchyTemplate, schema::kHierarchy},
    {nid::kContentsTemplate, schema::kContents},
    {nid::kAssocContentsTemplate, schema::kAssocContents},
    {nid::kSearchContentsTemplate, schema::kSearchContents},
    {nid::kOutgoingQueueTable, schema::kOutgoingQueue},
    {nid::kAttachmentTable, schema::kAttachments},
    {nid::kRecipientTable, schema::kRecipients},
    {nid::kBookkeeping6B6, schema::kBookkeeping6B6},
    {nid::kBookkeeping6D7, schema::kBookkeeping6D7},
    {nid::kBookkeeping6F8, schema::kBookkeeping6F8},
    {Sibling(nid::kSpamSearchFolder, NidType::kSearchContentsTable), schema::kSearchContents},
};

constexpr Nid kEmptyNodes[] = {
    nid::kSearchManagementQueue,
    nid::kSearchDomainObject,
    Sibling(nid::kSpamSearchFolder, NidType::kSearchUpdateQueue),
};

// Bits of PidTagValidFolderMask: the folders that the store names.
constexpr std::int32_t kTopIsThere = 0x01;
constexpr std::int32_t kOutboxIsThere = 0x04;
constexpr std::int32_t kDeletedItemsIsThere = 0x08;
constexpr std::int32_t kSentMailIsThere = 0x10;
constexpr std::int32_t kFinderIsThere = 0x80;

/// The version that current Outlook notes in the stores that it makes.
constexpr std::int32_t kPstVersion = 0x000E000D;

/// Every class of message is received in the root folder: an archive receives nothing.
ndb::WrittenNode ReceiveFolders(ndb::NdbWriter& ndb) {
  ltp::TableContextWriter table(ndb, schema::kReceiveFolders);
  PropertyBag row;
  row.PutBytes(tag::kMessageClass, {});
  row.PutInteger32(tag::kReceiveFolderNid, static_cast<std::int32_t>(Value(nid::kRootFolder)));
  table.AddRow(1, row.Views());
  return table.Finish();
}

void WriteSearchFolder(ndb::NdbWriter& ndb) {
  ltp::PropertyContextWriter node(ndb);
  node.AddText(tag::kDisplayName, kSpamSearchFolderName);
  node.AddInteger32(tag::kContentCount, 0);
  node.AddInteger32(tag::kContentUnreadCount, 0);
  node.AddBoolean(tag::kSubfolders, false);
  SetWritten(ndb, nid::kSpamSearchFolder, node.Finish(), nid::kRootFolder);
  node.AddInteger32(tag::kSearchFlags, 0);
  SetWritten(ndb, Sibling(nid::kSpamSearchFolder, NidType::kSearchCriteriaObject), node.Finish());
}

}  // namespace

void SetWritten(ndb::NdbWriter& ndb, Nid nid, const ndb::WrittenNode& node, Nid parent) {
  ndb.SetNode(nid, node.trees, parent);
}

void WriteSkeleton(ndb::NdbWriter& ndb, const NewNameMap& names) {
  for (const EmptyTable& row : kEmptyTables) {
    ltp::TableContextWriter table(ndb, row.schema);
    SetWritten(ndb, row.nid, table.Finish());
  }
  for (const Nid nid : kEmptyNodes) ndb.SetNode(nid, {}, Nid{});
  SetWritten(ndb, nid::kReceiveFolderTable, ReceiveFolders(ndb));

  Bytes searches;
  Append(searches, Value(nid::kSpamSearchFolder));
  ndb.SetNode(nid::kSearchActivityList, {ndb.WriteData(searches).bid, {}}, Nid{});

  WriteNameMap(ndb, names);
  WriteSearchFolder(ndb);
}

void WriteNameMap(ndb::NdbWriter& ndb, const NewNameMap& names) {
  ltp::PropertyContextWriter node(ndb);
  names.AddTo(node);
  SetWritten(ndb, nid::kNameToIdMap, node.Finish());
}

void WriteMessageStore(ndb::NdbWriter& ndb, const StoreIdentity& identity, Nid top, Nid searchRoot,
                       const DefaultFolders& defaults) {
  Bytes history;
  Append(history, std::uint32_t{1});
  Append(history, identity.replicaId);
  Append(history, std::uint32_t{1});

  PropertyBag folders;
  defaults.PutIntoStore(identity.recordKey, folders);
  const std::int32_t mask = kTopIsThere | kDeletedItemsIsThere | kFinderIsThere |
                            (folders.Has(tag::kIpmOutboxEntryId) ? kOutboxIsThere : 0) |
                            (folders.Has(tag::kIpmSentMailEntryId) ? kSentMailIsThere : 0);

  ltp::PropertyContextWriter node(ndb);
  node.Add(tag::kRecordKey, identity.recordKey);
  node.AddText(tag::kDisplayName, NameOf(identity.displayName));
  node.Add(tag::kIpmSubTreeEntryId, NodeEntryId(identity.recordKey, top));
  folders.AddTo(node);
  node.Add(tag::kFinderEntryId, NodeEntryId(identity.recordKey, searchRoot));
  node.AddInteger32(tag::kValidFolderMask, mask);
  node.AddInteger32(tag::kPstPassword, 0);
  node.AddBoolean(tag::kPstLrNoRestrictions, true);
  node.Add(tag::kReplVersionHistory, history);
  node.AddInteger32(tag::kReplFlags, 0);
  node.AddInteger32(tag::kLatestPstEnsure, kPstVersion);
  SetWritten(ndb, nid::kMessageStore, node.Finish());
}

}  // namespace velmora::messaging
