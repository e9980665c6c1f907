#include "store/messaging/store_writer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/messaging/failures.h"
#include "store/messaging/folder_writer.h"
#include "store/messaging/stored_text.h"

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

bool IsFull(const OutputFailure& failure) { return failure.Code() == ResultCode::STG_E_MEDIUMFULL; }

}  // namespace

StoreWriter::StoreWriter(std::unique_ptr<platform::ByteStore> file, text::TextView displayName,
                         const StoreOptions& options)
    : file_(std::move(file)),
      ndb_(WrittenOrRaise(ndb::NdbWriter::Create(*file_))),
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
    return step();
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
    WrittenOrRaise(WriteSkeleton(*store->ndb_));
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
    WrittenOrRaise(store->ndb_->Commit());
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

FileTime StoreWriter::Now() const {
  if (options_.sourceDateEpoch) return FileTimeOfUnixSeconds(*options_.sourceDateEpoch);
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return FileTimeOfUnixSeconds(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

/// What marking adds to the bytes to write.
std::uint64_t StoreWriter::BytesToMark(const Folder& folder, bool Folder::*what) const {
  if (folder.*what) return 0;
  const bool isShown = what == &Folder::propertiesChanged && folder.parent != nullptr;
  return MostBytesOf(folder, what) + (isShown ? BytesToMark(*folder.parent, &Folder::childrenChanged) : 0);
}

/// Sees to it that what is to be written will find room on the disk, with so much more, whatever comes between.
void StoreWriter::Reserve(std::uint64_t bytes, std::size_t nodes) {
  WrittenOrRaise(ndb_->Reserve(bytesToWrite_ + bytes + kOtherObjects, nodesToAdd_ + nodes));
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
    const Nid deletedItems = defaults_.Of(output::DefaultFolder::kDeletedItems);
    WrittenOrRaise(WriteMessageStore(*ndb_, identity_, top_->nid, searchRoot_->nid, deletedItems));
    messageStoreChanged_ = false;
  }
  for (Folder* folder : changedFolders_) {
    PropertyBag extra;
    if (folder == root_) defaults_.PutIntoRoot(identity_.recordKey, extra);
    WrittenOrRaise(WriteFolder(*ndb_, rows_, extra, options_.maxTableBlocks, *folder));
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
    WrittenOrRaise(ndb_->Commit());
    changesToCommit_ = changes_ + std::max(changes_ / 2, kFirstCommitDistance);
    sizeToCommit_ = ndb_->FileSize() + std::max(ndb_->FileSize() / 2, kSmallestGrowth);
    Reserve(0);
  } catch (const OutputFailure& failure) {
    // The change itself is made, and Seal may still have its room; the next change meets the full disk.
    if (!IsFull(failure)) throw;
  }
}

Folder& StoreWriter::AddFolder(Folder& parent, text::TextView name, text::TextView containerClass) {
  return Change([&]() -> Folder& {
    if (NameOf(name).empty()) throw OutputFailure(ResultCode::E_INVALIDARG, "A folder needs a name.");
    if (ChildOf(parent, name) != nullptr) {
      throw OutputFailure(ResultCode::MAPI_E_COLLISION, "A folder of that name is already there.");
    }
    Reserve(kNewFolderBytes + BytesToMark(parent, &Folder::propertiesChanged) +
                BytesToMark(parent, &Folder::childrenChanged),
            kFolderNodes);
    Folder& folder = folders_.Add(&parent, ndb_->NewNid(NidType::kNormalFolder), name, containerClass);
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

void StoreWriter::SetDefaultFolder(output::DefaultFolder kind, Folder& folder) {
  Change([&] {
    defaults_.Set(kind, folder.nid);
    messageStoreChanged_ = messageStoreChanged_ || kind == output::DefaultFolder::kDeletedItems;
    MarkChanged(*root_, &Folder::propertiesChanged);
  });
}

void StoreWriter::SetContainerClass(Folder& folder, text::TextView containerClass) {
  Change([&] {
    folder.containerClass = NameOf(containerClass);
    MarkChanged(folder, &Folder::propertiesChanged);
  });
}

void StoreWriter::Identify(ItemState& item) {
  item.searchKey = uids_.Next();
  item.created = Now();
}

Nid StoreWriter::Save(const ItemState& item, const std::vector<Attachment>& attachments, Folder& folder, Nid nid) {
  return Change([&] {
    const WrittenMessage message = WrittenOrRaise(messages_.Write(item, attachments, Now(), options_.codePage));
    const PropertyBag row = ContentsRow(message.properties);
    const std::vector<ltp::PropertyView> cells = row.Views();
    const std::uint64_t place = WrittenOrRaise(rows_.Append(cells));
    const auto size = static_cast<std::uint16_t>(std::min<std::size_t>(ValueBytesOf(cells), 0xFFFF));
    Reserve(
        ItemBytes(size) + BytesToMark(folder, &Folder::itemsChanged) + BytesToMark(folder, &Folder::propertiesChanged),
        1);
    const bool isNew = nid == kNoNid;
    const Nid saved = isNew ? ndb_->NewNid(NidType::kNormalMessage) : nid;
    WrittenOrRaise(ndb_->SetNode(saved, message.node.trees, folder.nid));
    if (isNew) folder.items.Add({.nid = saved});
    ItemRow& entry = *folder.items.Find(saved);
    folder.unreadCount -= static_cast<std::size_t>(entry.unread);
    folder.unreadCount += static_cast<std::size_t>(message.unread);
    entry.unread = message.unread;
    entry.place = place;
    MarkChanged(folder, &Folder::itemsChanged);
    MarkChanged(folder, &Folder::propertiesChanged);
    folder.rowBytes = folder.rowBytes - entry.size + size;
    bytesToWrite_ += ItemBytes(size);
    entry.size = size;
    CommitNowAndThen();
    return saved;
  });
}

void StoreWriter::Delete(Folder& folder, Nid nid) {
  Change([&] {
    const ItemRow* row = folder.items.Find(nid);
    if (row == nullptr) return;
    Reserve(BytesToMark(folder, &Folder::itemsChanged) + BytesToMark(folder, &Folder::propertiesChanged));
    WrittenOrRaise(ndb_->RemoveNode(nid));
    folder.unreadCount -= static_cast<std::size_t>(row->unread);
    folder.rowBytes -= row->size;
    folder.items.Delete(nid);
    MarkChanged(folder, &Folder::itemsChanged);
    MarkChanged(folder, &Folder::propertiesChanged);
    CommitNowAndThen();
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

Attachment StoreWriter::Attach(const output::ContentSource& content, text::TextView name) {
  return Change([&] { return WriteContent(*ndb_, content, name); });
}

Attachment StoreWriter::Attach(const ItemState& item, const std::vector<Attachment>& attachments, text::TextView name) {
  return Change([&] {
    const WrittenMessage message = WrittenOrRaise(messages_.Write(item, attachments, Now(), options_.codePage));
    return AttachMessage(*ndb_, message.node, name);
  });
}

std::vector<output::FullTable> StoreWriter::FullTables() const {
  std::vector<output::FullTable> full;
  folders_.ForEach([&full](const Folder& folder) {
    const std::size_t leftOut = folder.itemCellsLeftOut + folder.childCellsLeftOut;
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
    WrittenOrRaise(ndb_->Seal());
  });
  sealed_ = true;
  if (full) throw OutputFailure(*full);
}

}  // namespace velmora::messaging
