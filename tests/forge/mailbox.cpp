#include "forge/mailbox.h"

#include <algorithm>

namespace velmora::forge {
namespace {

constexpr Nid kNidStep = 0x20;
constexpr std::uint32_t kRead = 1;
constexpr Nid kHierarchyTable = 0x0D;
constexpr Nid kContentsTable = 0x0E;
constexpr Nid kAssociatedTable = 0x0F;
constexpr Nid kSearchQueue = 0x06;
constexpr Nid kSearchCriteria = 0x07;
constexpr Nid kSearchTable = 0x10;

bool IsAssociated(Nid nid) { return (nid & 0x1F) == 8; }

Nid TableOf(Nid folder, Nid type) { return (folder & ~Nid{0x1F}) | type; }

bool IsSearch(Nid nid) { return (nid & 0x1F) == 3; }

}  // namespace

Bytes RecordKey() { return Noise(16, 0x5EED); }

Bytes EntryId(Nid nid) {
  Bytes id(4);
  Append(id, RecordKey());
  Append(id, nid, 4);
  return id;
}

Bytes MemberEntryId(Nid nid, MemberKind kind) {
  Bytes id(4);
  for (const unsigned b :
       {0xC0, 0x91, 0xAD, 0xD3, 0x51, 0x9D, 0xCF, 0x11, 0xA4, 0xA9, 0x00, 0xAA, 0x00, 0x47, 0xFA, 0xA4}) {
    Append(id, b, 1);
  }
  Append(id, static_cast<std::uint8_t>(kind), 1);
  Append(id, EntryId(nid));
  return id;
}

Mailbox::Mailbox(StoreOptions store, MailboxOptions options) : options_(std::move(options)), store_(store) {
  AddBaseFolders();
}

Mailbox::Mailbox(const std::filesystem::path& path, StoreOptions store, MailboxOptions options)
    : options_(std::move(options)), store_(store, path) {
  AddBaseFolders();
}

void Mailbox::AddBaseFolders() {
  if (!options_.base) return;
  AddFolder({.name = u"", .parent = kRootFolder, .nid = kRootFolder});
  if (options_.offline) {
    AddFolder({.name = u"Root - Mailbox", .parent = kRootFolder, .nid = kOfflineRoot});
    AddFolder({.name = u"Finder", .parent = kOfflineRoot, .nid = kOfflineFinder});
    AddFolder({.name = u"IPM_SUBTREE", .parent = kOfflineRoot, .nid = kOfflineTop});
    AddFolder({.name = u"Deleted Items", .parent = kOfflineTop, .nid = kOfflineDeletedItems});
    AddFolder({.name = u"Inbox", .parent = kOfflineTop, .nid = kOfflineInbox});
    AddFolder({.name = u"Outbox", .parent = kOfflineTop, .nid = kOfflineOutbox});
    AddFolder({.name = u"Sent Items", .parent = kOfflineTop, .nid = kOfflineSentItems});
    return;
  }
  AddFolder({.name = options_.topName, .parent = kRootFolder, .nid = kTopFolder});
  AddFolder({.name = u"Search Root", .parent = kRootFolder, .nid = kSearchRoot});
  AddFolder({.name = u"Deleted Items", .nid = kDeletedItems});
  if (options_.tables) AddFolder({.name = u"SPAM Search Folder 2", .parent = kRootFolder, .nid = kSearchFolder});
}

Nid Mailbox::AddFolder(const FolderSpec& given) {
  const Nid nid = given.nid.value_or(nextFolder_);
  if (!given.nid) nextFolder_ += kNidStep;
  folders_[nid] = {.given = given, .nid = nid};
  return nid;
}

Mailbox::Added Mailbox::AddMessage(Nid folder, const Message& message, std::optional<Nid> wanted) {
  const Nid nid = wanted.value_or(nextMessage_);
  if (!wanted) nextMessage_ += kNidStep;
  WrittenMessage written = WriteMessage(store_, names_, message);
  store_.AddNode(nid, written.bidData, written.bidSub, folder);

  const auto found = folders_.find(folder);
  if (found != folders_.end()) {
    Folder& home = found->second;
    const bool associated = IsAssociated(nid);
    ++(associated ? home.associatedCount : home.messageCount);
    if (!associated && (message.flags & kRead) == 0) ++home.unreadCount;
    if (options_.tables) {
      const auto& columns = associated ? AssociatedColumns() : ContentsColumns();
      PropertyList cells = CellsOf(columns, std::move(written.properties));
      cells.push_back(Int32(0x0E17, 0));
      (associated ? home.associated : home.messages).push_back({.id = nid, .cells = std::move(cells)});
    }
  }
  return {.nid = nid, .bidData = written.bidData, .bidSub = written.bidSub};
}

void Mailbox::FindChildren() {
  for (const auto& [nid, folder] : folders_) {
    const auto parent = folders_.find(folder.given.parent);
    if (parent != folders_.end() && parent->first != nid) parent->second.children.push_back(nid);
  }
}

void Mailbox::CloseFolder(Nid folder) { CloseFolder(folders_.at(folder)); }

void Mailbox::CloseFolder(Folder& folder) {
  if (folder.closed || !options_.tables) return;
  AddTableNode(store_, TableOf(folder.nid, kContentsTable), ContentsColumns(), folder.messages);
  AddTableNode(store_, TableOf(folder.nid, kAssociatedTable), AssociatedColumns(), folder.associated);
  folder.messages.clear();
  folder.messages.shrink_to_fit();
  folder.associated.clear();
  folder.closed = true;
}

PropertyList Mailbox::FolderProperties(const Folder& folder) const {
  PropertyList list = ListOf(Text(0x3001, folder.given.name), Int32(0x3602, folder.messageCount),
                             Int32(0x3603, folder.unreadCount), Bool(0x360A, !folder.children.empty()));
  if (!folder.given.containerClass.empty()) list.push_back(Text(0x3613, folder.given.containerClass));
  if (folder.associatedCount != 0) list.push_back(Int32(0x6635, folder.associatedCount));
  for (const Property& property : folder.given.properties) Set(list, property);
  return list;
}

void Mailbox::WriteFolder(Folder& folder) {
  folder.given.properties = Resolve(names_, folder.given.properties);
  AddContextNode(store_, folder.nid, folder.given.parent, FolderProperties(folder), folder.given.context);
  if (IsSearch(folder.nid)) return WriteSearch(folder);
  if (!options_.tables) return;
  CloseFolder(folder);
  std::vector<Row> rows;
  for (const Nid child : folder.children) {
    rows.push_back({.id = child, .cells = CellsOf(HierarchyColumns(), FolderProperties(folders_.at(child)))});
  }
  AddTableNode(store_, TableOf(folder.nid, kHierarchyTable), HierarchyColumns(), rows);
}

// A search folder has a table of its own kind, a queue of updates and the criteria.
void Mailbox::WriteSearch(const Folder& folder) {
  if (!options_.tables) return;
  std::vector<Row> rows;
  for (const Nid nid : folder.given.found) rows.push_back({.id = nid, .cells = {Int32(0x0E17, 0)}});
  store_.AddNode(TableOf(folder.nid, kSearchQueue), 0, 0, 0);
  AddContextNode(store_, TableOf(folder.nid, kSearchCriteria), 0, {Int32(0x660B, 0)});
  AddTableNode(store_, TableOf(folder.nid, kSearchTable), SearchColumns(), rows);
}

void Mailbox::WriteStoreNode() {
  PropertyList list = {Binary(0x0FF9, RecordKey()), Text(0x3001, u"Forged store"), Int32(0x67FF, 0)};
  if (!options_.offline) {
    for (const auto& [id, folder] :
         {std::pair(0x35E0, kTopFolder), std::pair(0x35E3, kDeletedItems), std::pair(0x35E7, kSearchRoot)}) {
      list.push_back(Binary(static_cast<std::uint16_t>(id), EntryId(folder)));
    }
    list.push_back(Int32(0x35DF, 0x89));
  }
  for (const Property& property : Resolve(names_, options_.storeProperties)) Set(list, property);
  AddContextNode(store_, kStoreNode, 0, list);
}

Image Mailbox::Finish() {
  FindChildren();
  for (auto& [nid, folder] : folders_) WriteFolder(folder);
  if (options_.base) WriteStoreNode();
  if (options_.base && options_.tables) WriteFixedNodes();
  if (options_.nameMap) {
    names_.PadTo(options_.namesAtLeast);
    AddContextNode(store_, kNameMapNode, 0, names_.Properties(options_.pairedBuckets));
  }
  return store_.Finish();
}

}  // namespace velmora::forge
