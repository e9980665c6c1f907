// A new store: creation, folders, items, commits and sealing.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "platform/file.h"
#include "platform/workers.h"
#include "store/messaging/folders/row_spool.h"
#include "store/messaging/objects/message_writer.h"
#include "store/messaging/store.h"
#include "store/messaging/tables/store_skeleton.h"
#include "store/messaging/values/identity.h"
#include "text/code_page.h"

namespace velmora::messaging {

struct StoreOptions {
  std::optional<std::int64_t> sourceDateEpoch;           ///< seconds since 1970: the store's only time, and its seed
  text::CodePage codePage = text::CodePage::Lossless();  ///< of HTML bodies that do not tell their own
  std::size_t maxTableBlocks = kMaxHeapBlocks;           ///< for the texts and binary values of one table
  platform::Workers* workers = &platform::Workers::WithoutThreads();  ///< encode and write; must outlive the store
};

/// An item whose last save is still to be written.
class PostponedSave {
 public:
  virtual ~PostponedSave() = default;
  virtual void WriteSave() = 0;
};

/// What was written is committed at creation, at distances that grow with the store, and by Seal; a process
/// that dies leaves the last commit. After a failure of the file every further change raises it again, and
/// what was committed stays. On a full disk everything saved before stays: room for its commit is kept at all
/// times, and Seal uses it.
class StoreWriter : public Store {
 public:
  /// Writes an empty store into `file`, which must be empty, and commits it.
  static std::shared_ptr<StoreWriter> Create(std::unique_ptr<platform::ByteStore> file, text::TextView displayName,
                                             const StoreOptions& options);

  /// Seals what was not sealed; a failure is lost, so a caller who wants to know calls Seal before.
  ~StoreWriter() override;

  const ndb::BlockSource& Source() const override { return *ndb_; }
  StoreWriter& Writer() override { return *this; }
  const ItemRows& ItemsOf(Folder& folder) override {
    WritePostponed();
    return folder.items;
  }

  // -- objects, property by property. Values stand as the store holds them: numbers little-endian, times in 100 ns
  // since 1601 UTC, texts UTF-16LE without terminator. All is copied or shared: nothing of a caller's has to outlive
  // the call, but a bag with a stored value goes before the store. Who gives ids has the highest noted first
  // (NdbWriter::NoteNid), so that those that the store makes itself stay apart from them. E_FAIL for what the format
  // cannot hold; the store goes on then without that object.

  /// Adds a folder of any properties, kDisplayName and kContainerClass among them; its counts are the writer's.
  /// E_INVALIDARG for an empty name, MAPI_E_COLLISION for one that is there. A given id must be free, else it is
  /// MAPI_E_COLLISION too, and of a folder's type with an index that the store does not use itself (E_INVALIDARG).
  Folder& AddFolder(Folder& parent, PropertyBag properties, std::optional<Nid> nid = {});
  Folder& AddFolder(Folder& parent, text::TextView name, text::TextView containerClass);

  /// Gives a folder other properties in place of all that it has; by the same rules.
  void SetProperties(Folder& folder, PropertyBag properties);

  void SetContainerClass(Folder& folder, text::TextView containerClass);

  void SetDefaultFolder(output::DefaultFolder kind, Folder& folder);

  /// Writes a message into a folder: in place of the one of that id where the folder has it, else as a new one, of
  /// the given id by the rules for a folder's. Returns its id.
  Nid Save(Message message, Folder& folder, std::optional<Nid> nid = {});

  void Delete(Folder& folder, Nid nid);

  /// Puts a value of any size: streamed from a content, or a tree that was written to Ndb().
  void PutStream(PropertyBag& bag, PropTag tag, const output::ContentSource& content);
  void PutTree(PropertyBag& bag, PropTag tag, const ndb::DataTree& tree);

  /// Puts an attachment's object: a message, or the node of another (its storage and sub-nodes, written to Ndb()).
  void PutMessage(PropertyBag& attachment, Message message);
  void PutObject(PropertyBag& attachment, const ndb::WrittenNode& node);

  /// The identifier under which properties of that name go into bags; E_FAIL when the store has no more.
  std::uint16_t NamedId(const AnyPropertyName& name);

  /// For data and sub-node trees of the caller's own, which Put then takes.
  ndb::NdbWriter& Ndb() { return *ndb_; }

  // -- for the items of the operations

  const Uid& RecordKey() const { return identity_.recordKey; }

  Uid NewUid() { return uids_.Next(); }
  text::FileTime Now() const;
  const text::CodePage& CodePage() const { return options_.codePage; }

  /// An item that is in the store was saved once more. A mail is saved with each message that is attached to it, so
  /// writing it waits for whatever could tell the difference: the same of another item, a look at the items of a
  /// folder, the sealing, or a call of WritePostponed. `item` stays, or calls Forget.
  void Postpone(PostponedSave& item);
  void WritePostponed();
  void Forget(const PostponedSave& item);

  /// The tables that had no room for all values when they were written last.
  std::vector<output::FullTable> FullTables() const;

  /// Commits, and makes the store what a cleanly closed one is. Every later change raises E_FAIL; reading
  /// goes on. On a disk that is full all but the change that failed is sealed.
  void Seal();

 private:
  StoreWriter(std::unique_ptr<platform::ByteStore> file, text::TextView displayName, const StoreOptions& options);

  template <class Step>
  decltype(auto) Change(Step step);
  void CommitNowAndThen();
  void WriteChanges();
  void MarkChanged(Folder& folder, bool Folder::*what);
  std::uint64_t BytesToMark(const Folder& folder, bool Folder::*what) const;
  void Reserve(std::uint64_t bytes, std::size_t nodes = 0);
  void CheckGiven(Nid nid, NidType type) const;

  std::unique_ptr<platform::ByteStore> file_;
  std::unique_ptr<ndb::NdbWriter> ndb_;
  StoreOptions options_;
  StoreIdentity identity_;
  UidSource uids_;
  MessageWriter messages_;
  NewNameMap nameMap_;
  RowSpool rows_;
  Folder* root_ = nullptr;
  Folder* searchRoot_ = nullptr;
  bool messageStoreChanged_ = true;
  bool nameMapChanged_ = false;
  std::vector<Folder*> changedFolders_;
  std::uint64_t bytesToWrite_ = 0;  ///< that WriteChanges writes at most
  std::size_t nodesToAdd_ = 0;      ///< that WriteChanges adds at most
  PostponedSave* postponed_ = nullptr;
  std::size_t changes_ = 0;          ///< since creation
  std::size_t changesToCommit_ = 0;  ///< their number at which the next commit is due
  std::uint64_t sizeToCommit_ = 0;   ///< file size at which the next commit is due at the latest
  std::optional<output::OutputFailure> failure_;
  bool sealed_ = false;
};

}  // namespace velmora::messaging
