// Which folders of the source come across, and where they stand.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "complete/live_store.h"
#include "complete/text_pages.h"
#include "store/messaging/folders/default_folders.h"
#include "store/messaging/folders/folder_tree.h"

namespace velmora::complete {

/// A folder of the source.
struct SourceFolder {
  Nid nid{};
  ndb::NodeTrees trees{};  ///< empty for one that only its row in its parent's table tells of
  Nid nidParent{};
  SourceFolder* parent = nullptr;         ///< null for the root and for one whose parent is not there
  std::vector<SourceFolder*> children{};  ///< by ascending id
  text::Text name{};                      ///< its first kMostOfName units; empty where it cannot be read
  static constexpr std::size_t kMostOfName = 255;
  text::Text classOfRow{};     ///< the class that such a row tells
  std::uint64_t messages = 0;  ///< in it; ordinary ones, unless hidden ones come across too
  std::uint64_t foldersBelow = 0;
  std::uint64_t messagesBelow = 0;
  bool isInTree = false;                ///< the top that people see, or below it
  bool isCopied = false;                ///< and the top too, whose place the new store's takes
  messaging::Folder* target = nullptr;  ///< in the new store, once it has it
};

/// All of them, and which are copied: everything below the top that people see, and of the others those with a message
/// in them or below.
class FolderPlan {
 public:
  /// `hidden`: hidden messages count as well.
  FolderPlan(const LiveStore& source, const TextPages& pages, bool hidden);

  /// Null for an id that is no folder's.
  SourceFolder* Find(Nid nid);

  /// Null in a store without folders.
  SourceFolder* Top() const { return top_; }

  /// Null where there is none, or not right below the top.
  SourceFolder* DeletedItems() const { return deletedItems_; }

  std::map<Nid, SourceFolder>& Folders() { return folders_; }

  /// Under which folder of the new store a copied folder stands: its parent if that is copied too, else the top.
  SourceFolder* ParentOf(const SourceFolder& folder) const;

  /// The key by which entry ids of the source name their store.
  const std::optional<messaging::Uid>& RecordKey() const { return recordKey_; }

  /// As the source marks them, or by the ids that they have in every offline store.
  const messaging::DefaultFolders& Defaults() const { return defaults_; }

 private:
  void ReadFolders(const LiveStore& source, const TextPages& pages);
  void AddRows(const engine::LostNodes& lost);
  void JoinToTree(const LiveStore& source, bool hidden);
  void ReadMarks(const LiveStore& source);
  SourceFolder* LargestOf(const std::vector<SourceFolder*>& folders) const;
  void FindTop(const LiveStore& source);
  void FindDeletedItems();
  void ChooseCopied();

  std::map<Nid, SourceFolder> folders_;      ///< by ascending id
  std::vector<SourceFolder*> parentsFirst_;  ///< all of them, each behind its parent
  SourceFolder* top_ = nullptr;
  SourceFolder* deletedItems_ = nullptr;
  Nid topOfStore_{};  ///< as the message store names it
  std::optional<messaging::Uid> recordKey_;
  messaging::DefaultFolders defaults_;
};

}  // namespace velmora::complete
