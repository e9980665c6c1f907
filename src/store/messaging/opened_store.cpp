#include "store/messaging/opened_store.h"

#include <algorithm>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/messaging/failures.h"
#include "store/messaging/values/identity.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

[[noreturn]] void RaiseNoStore(const char* what) {
  throw output::OutputFailure(output::ResultCode::STG_E_READFAULT, what);
}

std::optional<ltp::PropertyContext> PropertiesOf(const ndb::BlockSource& source, Nid nid) {
  const auto node = source.FindNode(nid);
  if (!node) return std::nullopt;
  return IfReadable([&] { return ltp::PropertyContext::Open(source, node->trees); });
}

std::optional<ltp::TableContext> TableOf(const ndb::BlockSource& source, Nid nid) {
  const auto node = source.FindNode(nid);
  if (!node) return std::nullopt;
  return IfReadable([&] { return ltp::TableContext::Open(source, node->trees); });
}

}  // namespace

std::shared_ptr<OpenedStore> OpenedStore::Open(std::unique_ptr<platform::ByteSource> file) {
  auto reader = AsReading([&] { return ndb::StoreReader::Open(*file); });
  if (reader->Format().formatId != FORMAT_UNICODE) RaiseNoStore("The store is of another format than those made here.");
  std::shared_ptr<OpenedStore> store(new OpenedStore(std::move(file), std::move(reader)));
  store->ReadMessageStore();
  store->ReadFolders();
  return store;
}

StoreWriter& OpenedStore::Writer() {
  throw output::OutputFailure(output::ResultCode::E_FAIL, "The store is open for reading.");
}

void OpenedStore::ReadMessageStore() {
  auto properties = PropertiesOf(*reader_, nid::kMessageStore);
  if (!properties) RaiseNoStore("The store has no message store object.");
  displayName_ = properties->Text(tag::kDisplayName).value_or(text::Text());
  const Bytes recordKey = properties->Binary(tag::kRecordKey).value_or(Bytes());
  std::copy_n(recordKey.begin(), std::min(recordKey.size(), recordKey_.size()), recordKey_.begin());

  const auto folderOf = [&](PropTag tag) {
    return NodeOfEntryId(properties->Binary(tag).value_or(Bytes()), recordKey_).value_or(Nid{});
  };
  const Nid top = folderOf(tag::kIpmSubTreeEntryId);
  auto topProperties = PropertiesOf(*reader_, top);
  if (!topProperties) RaiseNoStore("The store does not tell its top folder.");
  top_ = &folders_.Add(nullptr, top, NameOf(topProperties->Text(tag::kDisplayName).value_or(text::Text())),
                       NameOf(topProperties->Text(tag::kContainerClass).value_or(text::Text())));

  if (auto names = PropertiesOf(*reader_, nid::kNameToIdMap)) names_ = NamedPropertyMap(*names);
  if (auto root = PropertiesOf(*reader_, nid::kRootFolder)) defaults_.ReadFromRoot(recordKey_, *root);
  defaults_.ReadFromStore(recordKey_, *properties);
}

void OpenedStore::ReadFolders() {
  std::vector<Folder*> unread{top_};
  while (!unread.empty()) {
    Folder& folder = *unread.back();
    unread.pop_back();
    ReadChildren(folder);
    unread.insert(unread.end(), folder.children.begin(), folder.children.end());
  }
}

void OpenedStore::ReadChildren(Folder& folder) {
  auto table = TableOf(*reader_, Sibling(folder.nid, NidType::kHierarchyTable));
  if (!table) return;
  for (std::size_t row = 0; row < table->RowCount(); ++row) {
    const Nid child{table->RowId(row)};
    // A folder that is met a second time would lead round in a circle.
    if (TypeOf(child) != NidType::kNormalFolder || folders_.OfNid(child) != nullptr) continue;
    if (!reader_->FindNode(child)) continue;
    folders_.Add(&folder, child, NameOf(table->Text(row, tag::kDisplayName).value_or(text::Text())),
                 NameOf(table->Text(row, tag::kContainerClass).value_or(text::Text())));
  }
}

const ItemRows& OpenedStore::ItemsOf(Folder& folder) {
  if (listed_.insert(folder.nid).second) {
    const auto table = TableOf(*reader_, Sibling(folder.nid, NidType::kContentsTable));
    for (std::size_t row = 0; table && row < table->RowCount(); ++row)
      folder.items.Put({.nid = Nid{table->RowId(row)}});
  }
  return folder.items;
}

}  // namespace velmora::messaging
