#include "forge/mailbox.h"

#include <algorithm>

namespace velmora::forge {
namespace {

constexpr Nid kNidStep = 0x20;
constexpr std::uint32_t kRead = 1;
constexpr Nid kHierarchyTable = 0x0D;
constexpr Nid kContentsTable = 0x0E;
constexpr Nid kAssociatedTable = 0x0F;

bool IsAssociated(Nid nid) { return (nid & 0x1F) == 8; }

Nid TableOf(Nid folder, Nid type) { return (folder & ~Nid{0x1F}) | type; }

Bytes RecordKey() { return Noise(16, 0x5EED); }

Bytes EntryId(Nid nid) {
  Bytes id(4);
  Append(id, RecordKey());
  Append(id, nid, 4);
  return id;
}

}  // namespace

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
  const WrittenMessage written = WriteMessage(store_, names_, message);
  store_.AddNode(nid, written.bidData, written.bidSub, folder);

  const auto found = folders_.find(folder);
  if (found != folders_.end()) {
    Folder& home = found->second;
    const bool associated = IsAssociated(nid);
    ++(associated ? home.associatedCount : home.messageCount);
    if (!associated && (message.flags & kRead) == 0) ++home.unreadCount;
    if (options_.tables) {
      const auto& columns = associated ? AssociatedColumns() : ContentsColumns();
      PropertyList cells = CellsOf(columns, written.properties);
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
  PropertyList list = {Text(0x3001, folder.given.name), Int32(0x3602, folder.messageCount),
                       Int32(0x3603, folder.unreadCount), Bool(0x360A, !folder.children.empty())};
  if (!folder.given.containerClass.empty()) list.push_back(Text(0x3613, folder.given.containerClass));
  if (folder.associatedCount != 0) list.push_back(Int32(0x6635, folder.associatedCount));
  for (const Property& property : folder.given.properties) Set(list, property);
  return list;
}

void Mailbox::WriteFolder(Folder& folder) {
  folder.given.properties = Resolve(names_, folder.given.properties);
  AddContextNode(store_, folder.nid, folder.given.parent, FolderProperties(folder), folder.given.context);
  // A search folder has a table of its own kind.
  if (!options_.tables || folder.nid == kSearchFolder) return;
  CloseFolder(folder);
  std::vector<Row> rows;
  for (const Nid child : folder.children) {
    rows.push_back({.id = child, .cells = CellsOf(HierarchyColumns(), FolderProperties(folders_.at(child)))});
  }
  AddTableNode(store_, TableOf(folder.nid, kHierarchyTable), HierarchyColumns(), rows);
}

void Mailbox::WriteStoreNode() {
  AddContextNode(store_, kStoreNode, 0,
                 {Binary(0x0FF9, RecordKey()), Text(0x3001, u"Forged store"), Int32(0x35DF, 0x89),
                  Binary(0x35E0, EntryId(kTopFolder)), Binary(0x35E3, EntryId(kDeletedItems)),
                  Binary(0x35E7, EntryId(kSearchRoot)), Int32(0x67FF, 0)});
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
