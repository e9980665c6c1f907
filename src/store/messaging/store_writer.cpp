#include "store/messaging/store_writer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/multi_value.h"
#include "store/messaging/failures.h"
#include "store/messaging/folders/folder_writer.h"
#include "store/messaging/tables/table_schemas.h"
#include "store/messaging/values/stored_text.h"
#include "store/ndb/data_tree_writer.h"

namespace velmora::messaging {
namespace {

using output::OutputFailure;
using output::ResultCode;

constexpr text::TextView kTopFolderName = u"Top of Personal Folders";
constexpr text::TextView kSearchRootName = u"Search Root";
constexpr text::TextView kDeletedItemsName = u"Deleted Items";

// A commit rewrites both trees and the tables that changed. With a distance of half of what is there, all
// commits together cost three times the last one, and a process that dies loses a third at most.
constexpr std::size_t kFirstCommitDistance = 64;
constexpr std::uint64_t kSmallestGrowth = 32 << 20;

// What a commit writes beside what its folders need: the message store, and the root's list of default folders.
constexpr std::uint64_t kOtherObjects = 4096;

// A folder without items, and its row in its parent's table, with the longest name and class.
constexpr std::uint64_t kNewFolderBytes = 5120;

constexpr std::size_t kStreamPiece = 8 * kMaxBlockData;

/// Ids up to this index are those of the nodes that every store has.
constexpr std::uint32_t kLastFixedIndex = 0x400;

/// The properties of a folder, sorted by who needs them; the counts that they tell are left out. A class that is there
/// and empty is one of the others.
struct FolderProperties {
  explicit FolderProperties(PropertyBag properties)
      : name(ltp::DecodeText(properties.Value(tag::kDisplayName))),
        containerClass(ltp::DecodeText(properties.Value(tag::kContainerClass))),
        others(std::move(properties)) {
    for (const PropTag tag : {tag::kDisplayName, tag::kContentCount, tag::kContentUnreadCount, tag::kSubfolders,
                              tag::kPstHiddenCount, tag::kPstHiddenUnread}) {
      others.Remove(tag);
    }
    if (!containerClass.empty()) others.Remove(tag::kContainerClass);
  }

  text::Text name;
  text::Text containerClass;
  PropertyBag others;
};

/// What a folder's names take in the file beyond kNewFolderBytes: in its object and in its row, as often as both are
/// written.
std::uint64_t LongNameBytes(const FolderProperties& folder) {
  const std::size_t units = folder.name.size() + folder.containerClass.size();
  return units > 2 * kNameLimit ? 4 * units * sizeof(char16_t) : 0;
}

bool IsFull(const OutputFailure& failure) { return failure.Code() == ResultCode::STG_E_MEDIUMFULL; }

}  // namespace

StoreWriter::StoreWriter(std::unique_ptr<platform::ByteStore> file, text::TextView displayName,
                         const StoreOptions& options)
    : file_(std::move(file)),
      ndb_(AsOperation([&] { return ndb::NdbWriter::Create(*file_, CryptMethod::kPermute, *options.workers); })),
      options_(options),
      uids_(options.sourceDateEpoch, text::ToUtf8(displayName)),
      messages_(*ndb_) {
  displayName_ = displayName;
}

/// Runs one change. A failure of the store is kept and raised again by every later change.
template <class Step>
decltype(auto) StoreWriter::Change(Step step) {
  if (failure_) throw OutputFailure(*failure_);
  if (sealed_) throw OutputFailure(ResultCode::E_FAIL, "The store is closed.");
  try {
    return AsOperation(step);
  } catch (const OutputFailure& failure) {
    if (output::IsStoreFailure(failure)) failure_ = failure;
    throw;
  }
}

std::shared_ptr<StoreWriter> StoreWriter::Create(std::unique_ptr<platform::ByteStore> file, text::TextView displayName,
                                                 const StoreOptions& options) {
  std::shared_ptr<StoreWriter> store(new StoreWriter(std::move(file), displayName, options));
  store->identity_ = {store->uids_.Next(), store->uids_.Next(), store->displayName_};
  store->Change([&] {
    WriteSkeleton(*store->ndb_, store->nameMap_);
    const auto add = [&](Folder* parent, Nid nid, text::TextView name, text::TextView containerClass) -> Folder& {
      Folder& folder = store->folders_.Add(parent, nid, name, containerClass);
      store->MarkChanged(folder, &Folder::propertiesChanged);
      store->MarkChanged(folder, &Folder::childrenChanged);
      store->MarkChanged(folder, &Folder::itemsChanged);
      return folder;
    };
    const auto newNid = [&] { return store->ndb_->NewNid(NidType::kNormalFolder); };
    store->root_ = &add(nullptr, nid::kRootFolder, {}, {});
    store->top_ = &add(store->root_, newNid(), kTopFolderName, {});
    store->searchRoot_ = &add(store->root_, newNid(), kSearchRootName, {});
    Folder& deletedItems = add(store->top_, newNid(), kDeletedItemsName, kMailContainerClass);
    store->defaults_.Set(output::DefaultFolder::kDeletedItems, deletedItems.nid);
    store->WriteChanges();
    store->ndb_->Commit();
    store->Reserve(0);
  });
  store->changesToCommit_ = store->changes_ + kFirstCommitDistance;
  store->sizeToCommit_ = store->ndb_->FileSize() + kSmallestGrowth;
  return store;
}

StoreWriter::~StoreWriter() {
  try {
    Seal();
  } catch (const OutputFailure&) {
    // Whoever wants to know has called Seal; what was committed is on disk.
  }
}

text::FileTime StoreWriter::Now() const {
  if (options_.sourceDateEpoch) return text::FileTimeOfUnixSeconds(*options_.sourceDateEpoch);
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return text::FileTimeOfUnixSeconds(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

/// What marking adds to the bytes to write.
std::uint64_t StoreWriter::BytesToMark(const Folder& folder, bool Folder::*what) const {
  if (folder.*what) return 0;
  const bool isShown = what == &Folder::propertiesChanged && folder.parent != nullptr;
  return MostBytesOf(folder, what) + (isShown ? BytesToMark(*folder.parent, &Folder::childrenChanged) : 0);
}

/// Sees to it that what is to be written will find room on the disk, with so much more, whatever comes between.
void StoreWriter::Reserve(std::uint64_t bytes, std::size_t nodes) {
  ndb_->Reserve(bytesToWrite_ + bytes + kOtherObjects, nodesToAdd_ + nodes);
}

void StoreWriter::MarkChanged(Folder& folder, bool Folder::*what) {
  if (!(folder.*what)) bytesToWrite_ += MostBytesOf(folder, what);
  folder.*what = true;
  if (what == &Folder::propertiesChanged && folder.parent != nullptr && !folder.parent->childrenChanged) {
    MarkChanged(*folder.parent, &Folder::childrenChanged);  // a row of the parent's table shows them
  }
  if (folder.isListed) return;
  folder.isListed = true;
  changedFolders_.push_back(&folder);
}

void StoreWriter::WriteChanges() {
  ndb_->DrawOnReserve();
  if (messageStoreChanged_) {
    WriteMessageStore(*ndb_, identity_, top_->nid, searchRoot_->nid, defaults_);
    messageStoreChanged_ = false;
  }
  if (nameMapChanged_) WriteNameMap(*ndb_, nameMap_);
  nameMapChanged_ = false;
  for (Folder* folder : changedFolders_) {
    PropertyBag extra;
    if (folder == root_) defaults_.PutIntoRoot(identity_.recordKey, extra);
    WriteFolder(*ndb_, rows_, extra, options_.maxTableBlocks, *folder);
    folder->isListed = false;
  }
  changedFolders_.clear();
  bytesToWrite_ = 0;
  nodesToAdd_ = 0;
}

void StoreWriter::CommitNowAndThen() {
  ++changes_;
  if (changes_ < changesToCommit_ && ndb_->FileSize() < sizeToCommit_) return;
  try {
    WriteChanges();
    ndb_->Commit();
    changesToCommit_ = changes_ + std::max(changes_ / 2, kFirstCommitDistance);
    sizeToCommit_ = ndb_->FileSize() + std::max(ndb_->FileSize() / 2, kSmallestGrowth);
    Reserve(0);
  } catch (const FailureError& failure) {
    // The change itself is made, and Seal may still have its room; the next change meets the full disk.
    if (failure.Cause().kind != FailureKind::kFull) throw;
  }
}

/// Raises where a given id cannot be that of a new object.
void StoreWriter::CheckGiven(Nid nid, NidType type) const {
  if (TypeOf(nid) != type || IndexOf(nid) <= kLastFixedIndex) {
    throw OutputFailure(ResultCode::E_INVALIDARG, "The id is none for such an object.");
  }
  if (ndb_->FindNode(nid) || folders_.OfNid(nid) != nullptr) {
    throw OutputFailure(ResultCode::MAPI_E_COLLISION, "An object of that id is already there.");
  }
}

Folder& StoreWriter::AddFolder(Folder& parent, PropertyBag properties, std::optional<Nid> nid) {
  return Change([&]() -> Folder& {
    const FolderProperties split(std::move(properties));
    if (split.name.empty()) throw OutputFailure(ResultCode::E_INVALIDARG, "A folder needs a name.");
    if (ChildOf(parent, split.name) != nullptr) {
      throw OutputFailure(ResultCode::MAPI_E_COLLISION, "A folder of that name is already there.");
    }
    if (nid) CheckGiven(*nid, NidType::kNormalFolder);
    Reserve(kNewFolderBytes + LongNameBytes(split) + MostBytesOf(split.others) +
                BytesToMark(parent, &Folder::propertiesChanged) + BytesToMark(parent, &Folder::childrenChanged),
            kFolderNodes);
    Folder& folder =
        folders_.Add(&parent, nid ? *nid : ndb_->NewNid(NidType::kNormalFolder), split.name, split.containerClass);
    if (nid) ndb_->NoteNid(*nid);
    folder.others = split.others;
    for (bool Folder::*what : {&Folder::propertiesChanged, &Folder::childrenChanged, &Folder::itemsChanged}) {
      MarkChanged(folder, what);
    }
    MarkChanged(parent, &Folder::propertiesChanged);
    bytesToWrite_ += ChildBytes((folder.name.size() + folder.containerClass.size()) * sizeof(char16_t));
    nodesToAdd_ += kFolderNodes;
    CommitNowAndThen();
    return folder;
  });
}

Folder& StoreWriter::AddFolder(Folder& parent, text::TextView name, text::TextView containerClass) {
  PropertyBag properties;
  properties.PutName(tag::kDisplayName, name);
  if (!containerClass.empty()) properties.PutName(tag::kContainerClass, containerClass);
  return AddFolder(parent, std::move(properties));
}

void StoreWriter::SetProperties(Folder& folder, PropertyBag properties) {
  Change([&] {
    const FolderProperties split(std::move(properties));
    if (folder.parent == nullptr || split.name.empty()) {
      throw OutputFailure(ResultCode::E_INVALIDARG, "A folder needs a name.");
    }
    Folder* const twin = ChildOf(*folder.parent, split.name);
    if (twin != nullptr && twin != &folder) {
      throw OutputFailure(ResultCode::MAPI_E_COLLISION, "A folder of that name is already there.");
    }
    Reserve(kNewFolderBytes + LongNameBytes(split) + MostBytesOf(split.others) +
            BytesToMark(folder, &Folder::propertiesChanged));
    folders_.Rename(folder, split.name, split.containerClass);
    folder.others = split.others;
    MarkChanged(folder, &Folder::propertiesChanged);
    bytesToWrite_ += kNewFolderBytes + MostBytesOf(split.others);
  });
}

void StoreWriter::SetContainerClass(Folder& folder, text::TextView containerClass) {
  Change([&] {
    folders_.Rename(folder, folder.name, NameOf(containerClass));
    folder.others.Remove(tag::kContainerClass);
    MarkChanged(folder, &Folder::propertiesChanged);
  });
}

void StoreWriter::SetDefaultFolder(output::DefaultFolder kind, Folder& folder) {
  Change([&] {
    defaults_.Set(kind, folder.nid);
    messageStoreChanged_ = messageStoreChanged_ || DefaultFolders::IsOfStore(kind);
    MarkChanged(*root_, &Folder::propertiesChanged);
  });
}

Nid StoreWriter::Save(Message message, Folder& folder, std::optional<Nid> nid) {
  return Change([&] {
    const bool hidden = message.isAssociated;
    const NidType type = hidden ? NidType::kAssocMessage : NidType::kNormalMessage;
    ItemRows& items = hidden ? folder.hiddenItems : folder.items;
    bool Folder::*const changed = hidden ? &Folder::hiddenItemsChanged : &Folder::itemsChanged;
    if (nid && items.Find(*nid) == nullptr) CheckGiven(*nid, type);
    const WrittenMessage written = messages_.Write(std::move(message));
    const PropertyBag row = RowOf(hidden ? schema::kAssocContents : schema::kContents, written.properties);
    const std::vector<ltp::PropertyView> cells = row.Views();
    ItemRow item;
    item.place = rows_.Append(cells);
    item.size = static_cast<std::uint16_t>(std::min<std::size_t>(ValueBytesOf(cells), 0xFFFF));
    item.unread = (written.properties.Integer32(tag::kMessageFlags) & kMessageRead) == 0;
    Reserve(ItemBytes(item.size) + BytesToMark(folder, changed) + BytesToMark(folder, &Folder::propertiesChanged), 1);
    item.nid = nid ? *nid : ndb_->NewNid(type);
    ndb_->SetNode(item.nid, written.node.trees, folder.nid);
    items.Put(item);
    MarkChanged(folder, changed);
    MarkChanged(folder, &Folder::propertiesChanged);
    bytesToWrite_ += ItemBytes(item.size);
    CommitNowAndThen();
    return item.nid;
  });
}

void StoreWriter::Delete(Folder& folder, Nid nid) {
  Change([&] {
    if (folder.items.Find(nid) == nullptr) return;
    Reserve(BytesToMark(folder, &Folder::itemsChanged) + BytesToMark(folder, &Folder::propertiesChanged));
    ndb_->RemoveNode(nid);
    folder.items.Delete(nid);
    MarkChanged(folder, &Folder::itemsChanged);
    MarkChanged(folder, &Folder::propertiesChanged);
    CommitNowAndThen();
  });
}

void StoreWriter::PutStream(PropertyBag& bag, PropTag tag, const output::ContentSource& content) {
  Change([&] {
    ndb::DataTreeWriter tree(*ndb_);
    Bytes piece(static_cast<std::size_t>(std::min<std::uint64_t>(content.Size(), kStreamPiece)));
    std::uint64_t offset = 0;
    while (const std::size_t length = content.ReadAt(offset, piece)) {
      tree.Append(std::span(piece).first(length));
      offset += length;
    }
    if (tree.Size() <= ltp::PropertyContextWriter::kHeapValueLimit) {
      bag.PutBytes(tag, tree.Buffered());
    } else {
      PutTree(bag, tag, tree.Finish());
    }
  });
}

void StoreWriter::PutTree(PropertyBag& bag, PropTag tag, const ndb::DataTree& tree) {
  const ndb::WrittenNode value{{tree.bid, {}}, tree.size};
  bag.PutStored(tag, std::make_shared<StoredValue>(*ndb_, value));
}

void StoreWriter::PutMessage(PropertyBag& attachment, Message message) {
  Change([&] {
    const ndb::WrittenNode node = messages_.Write(std::move(message)).node;
    // An id that no other message has: some readers look among all of the store.
    const Nid nid = ndb_->NewNid(NidType::kNormalMessage);
    attachment.PutStored(tag::kAttachDataObject, std::make_shared<StoredValue>(*ndb_, node, nid));
  });
}

void StoreWriter::PutObject(PropertyBag& attachment, const ndb::WrittenNode& node) {
  attachment.PutStored(tag::kAttachDataObject, std::make_shared<StoredValue>(*ndb_, node));
}

std::uint16_t StoreWriter::NamedId(const AnyPropertyName& name) {
  return Change([&] {
    const std::size_t count = nameMap_.Count();
    const auto id = nameMap_.IdOf(name);
    if (!id) throw OutputFailure(ResultCode::E_FAIL, "The store has no identifier for another name.");
    if (nameMap_.Count() != count) {
      // What is reserved with the next object counts the whole map for each new name: names are few.
      bytesToWrite_ += nameMap_.MostBytes();
      nameMapChanged_ = true;
    }
    return *id;
  });
}

void StoreWriter::Postpone(PostponedSave& item) {
  Change([] {});  // raises what a save raises
  if (postponed_ != &item) WritePostponed();
  postponed_ = &item;
}

void StoreWriter::WritePostponed() {
  if (PostponedSave* item = std::exchange(postponed_, nullptr)) item->WriteSave();
}

void StoreWriter::Forget(const PostponedSave& item) {
  if (postponed_ == &item) postponed_ = nullptr;
}

std::vector<output::FullTable> StoreWriter::FullTables() const {
  std::vector<output::FullTable> full;
  folders_.ForEach([&full](const Folder& folder) {
    const std::size_t leftOut = folder.itemCellsLeftOut + folder.hiddenCellsLeftOut + folder.childCellsLeftOut;
    if (leftOut != 0) full.push_back({folder.name, leftOut});
  });
  return full;
}

void StoreWriter::Seal() {
  if (sealed_) return;
  try {
    WritePostponed();
  } catch (const OutputFailure& failure) {
    if (!IsFull(failure)) throw;
  }
  // Only the change that the disk had no room for is missing; what was saved before has its room.
  const std::optional<OutputFailure> full = failure_ && IsFull(*failure_) ? std::exchange(failure_, {}) : std::nullopt;
  Change([&] {
    WriteChanges();
    ndb_->Seal();
  });
  sealed_ = true;
  if (full) throw OutputFailure(*full);
}

}  // namespace velmora::messaging
