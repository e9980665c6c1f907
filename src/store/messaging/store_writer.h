// A new store: creation, folders, items, commits and sealing.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "platform/file.h"
#include "store/messaging/attachments.h"
#include "store/messaging/message_writer.h"
#include "store/messaging/row_spool.h"
#include "store/messaging/store.h"
#include "store/messaging/store_skeleton.h"
#include "store/messaging/uid_source.h"
#include "text/code_page.h"

namespace velmora::messaging {

struct StoreOptions {
  std::optional<std::int64_t> sourceDateEpoch;           ///< seconds since 1970: the store's only time, and its seed
  text::CodePage codePage = text::CodePage::Lossless();  ///< of HTML bodies that do not tell their own
  std::size_t maxTableBlocks = kMaxHeapBlocks;           ///< for the texts and binary values of one table
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

  /// Adds a folder. E_INVALIDARG for an empty name, MAPI_E_COLLISION for one that is there.
  Folder& AddFolder(Folder& parent, text::TextView name, text::TextView containerClass);

  void SetDefaultFolder(output::DefaultFolder kind, Folder& folder);
  void SetContainerClass(Folder& folder, text::TextView containerClass);

  /// A search key and the time of creation for an item that was never saved.
  void Identify(ItemState& item);

  /// Writes an item into its folder: as a new one when `nid` is none, else in place of the one of that id.
  /// Returns its id.
  Nid Save(const ItemState& item, const std::vector<Attachment>& attachments, Folder& folder, Nid nid);

  void Delete(Folder& folder, Nid nid);

  /// An item that is in the store was saved once more. A mail is saved with each message that is attached to it, so
  /// writing it waits for whatever could tell the difference: the same of another item, a look at the items of a
  /// folder, the sealing, or a call of WritePostponed. `item` stays, or calls Forget.
  void Postpone(PostponedSave& item);
  void WritePostponed();
  void Forget(const PostponedSave& item);

  /// Writes a content, or a copy of an item as it stands now, for an attachment.
  Attachment Attach(const output::ContentSource& content, text::TextView name);
  Attachment Attach(const ItemState& item, const std::vector<Attachment>& attachments, text::TextView name);

  /// The attachments of a saved item.
  std::vector<Attachment> ReadAttachments(ltp::PropertyContext& message) {
    return messaging::ReadAttachments(*ndb_, message);
  }

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
  FileTime Now() const;

  std::unique_ptr<platform::ByteStore> file_;
  std::unique_ptr<ndb::NdbWriter> ndb_;
  StoreOptions options_;
  StoreIdentity identity_;
  UidSource uids_;
  MessageWriter messages_;
  RowSpool rows_;
  Folder* root_ = nullptr;
  Folder* searchRoot_ = nullptr;
  bool messageStoreChanged_ = true;
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
