#include "complete/folder_plan.h"

#include <algorithm>
#include <unordered_set>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context.h"

namespace velmora::complete {
namespace {

constexpr text::TextView kTopName = u"IPM_SUBTREE";
constexpr text::TextView kDeletedItemsName = u"Deleted Items";

std::optional<ltp::PropertyContext> Open(const LiveStore& source, const ndb::NodeTrees& trees, ndb::Faults& faults) {
  return IfReadable([&] { return ltp::PropertyContext::Open(source, trees, &faults); });
}

}  // namespace

FolderPlan::FolderPlan(const LiveStore& source, const TextPages& pages, bool hidden) {
  ReadFolders(source, pages);
  AddRows(source.Found().Lost());
  JoinToTree(source, hidden);
  ReadMarks(source);
  FindTop(source);
  FindDeletedItems();
  ChooseCopied();
}

SourceFolder* FolderPlan::Find(Nid nid) {
  const auto found = folders_.find(nid);
  return found != folders_.end() ? &found->second : nullptr;
}

SourceFolder* FolderPlan::ParentOf(const SourceFolder& folder) const {
  const bool staysBelow =
      folder.parent != nullptr && folder.parent->isCopied && folder.parent->isInTree == folder.isInTree;
  return staysBelow ? folder.parent : top_;
}

void FolderPlan::ReadFolders(const LiveStore& source, const TextPages& pages) {
  for (const ndb::NodeEntry& node : source.Nodes()) {
    if (TypeOf(node.nid) != NidType::kNormalFolder) continue;
    SourceFolder& folder = folders_[node.nid];
    folder.nid = node.nid;
    folder.trees = node.trees;
    folder.nidParent = node.nidParent;
    ndb::Faults faults(node.nid);
    if (auto context = Open(source, node.trees, faults)) {
      const text::Text name = ReadText(*context, tag::kDisplayName, pages.OfStore()).value_or(text::Text());
      folder.name = name.substr(0, SourceFolder::kMostOfName);
    }
  }
}

/// Folders whose own node is gone.
void FolderPlan::AddRows(const engine::LostNodes& lost) {
  for (const engine::FolderRow& row : lost.folderRows) {
    const auto [folder, isNew] = folders_.try_emplace(row.nid);
    if (!isNew || TypeOf(row.nid) != NidType::kNormalFolder) continue;
    folder->second.nid = row.nid;
    folder->second.nidParent = row.nidParent;
    folder->second.name = row.name.substr(0, SourceFolder::kMostOfName);
    folder->second.classOfRow = row.containerClass;
  }
}

void FolderPlan::JoinToTree(const LiveStore& source, bool hidden) {
  for (const ndb::NodeEntry& node : source.Nodes()) {
    SourceFolder* parent = Find(node.nidParent);
    if (parent == nullptr) continue;
    const NidType type = TypeOf(node.nid);
    if (type == NidType::kNormalMessage || (hidden && type == NidType::kAssocMessage)) ++parent->messages;
  }
  for (auto& [nid, folder] : folders_) {
    if (folder.nidParent != nid) folder.parent = Find(folder.nidParent);
  }
  // A folder whose parents lead round in a circle is taken out of it, and stands alone.
  std::unordered_set<const SourceFolder*> rooted;
  for (auto& [nid, folder] : folders_) {
    std::unordered_set<const SourceFolder*> path;
    SourceFolder* last = nullptr;
    for (SourceFolder* at = &folder; at != nullptr && !rooted.contains(at); last = at, at = at->parent) {
      if (path.insert(at).second) continue;
      last->parent = nullptr;
      break;
    }
    rooted.merge(path);
  }
  for (auto& [nid, folder] : folders_) {
    if (folder.parent != nullptr) {
      folder.parent->children.push_back(&folder);
    } else {
      parentsFirst_.push_back(&folder);
    }
  }
  for (std::size_t i = 0; i < parentsFirst_.size(); ++i) {
    const auto& children = parentsFirst_[i]->children;
    parentsFirst_.insert(parentsFirst_.end(), children.begin(), children.end());
  }
  for (auto folder = parentsFirst_.rbegin(); folder != parentsFirst_.rend(); ++folder) {
    (*folder)->messagesBelow += (*folder)->messages;
    if (SourceFolder* parent = (*folder)->parent) {
      parent->foldersBelow += (*folder)->foldersBelow + 1;
      parent->messagesBelow += (*folder)->messagesBelow;
    }
  }
}

void FolderPlan::ReadMarks(const LiveStore& source) {
  const auto node = source.FindNode(nid::kMessageStore);
  ndb::Faults faults;
  auto store = node ? Open(source, node->trees, faults) : std::nullopt;
  const auto key = store ? store->Binary(tag::kRecordKey) : std::nullopt;
  if (!key || key->size() != sizeof(messaging::Uid)) return;
  std::ranges::copy(*key, recordKey_.emplace().begin());
  const auto top = messaging::NodeOfEntryId(store->Binary(tag::kIpmSubTreeEntryId).value_or(Bytes()), *recordKey_);
  topOfStore_ = top.value_or(kNoNid);
  defaults_.ReadFromStore(*recordKey_, *store);
  const auto rootNode = source.FindNode(nid::kRootFolder);
  if (auto root = rootNode ? Open(source, rootNode->trees, faults) : std::nullopt) {
    defaults_.ReadFromRoot(*recordKey_, *root);
  }
}

SourceFolder* FolderPlan::LargestOf(const std::vector<SourceFolder*>& folders) const {
  const auto size = [](const SourceFolder* folder) { return std::pair(folder->foldersBelow, folder->messagesBelow); };
  const auto largest = std::ranges::max_element(folders, {}, size);  // the first of equals
  return largest != folders.end() ? *largest : nullptr;
}

void FolderPlan::FindTop(const LiveStore& source) {
  const bool isOffline = source.Found().Kind() == engine::StoreKind::kOst;
  top_ = Find(topOfStore_);
  if (top_ == nullptr && isOffline) {
    top_ = Find(nid::kOfflineTop);
    if (top_ != nullptr) {
      for (const auto& [kind, nid] : {std::pair(DefaultFolder::kDeletedItems, nid::kOfflineDeletedItems),
                                      std::pair(DefaultFolder::kOutbox, nid::kOfflineOutbox),
                                      std::pair(DefaultFolder::kSentMail, nid::kOfflineSentMail)}) {
        if (defaults_.Of(kind) == kNoNid && Find(nid) != nullptr) defaults_.Set(kind, nid);
      }
    }
  }
  if (top_ == nullptr) {
    std::vector<SourceFolder*> named;
    for (auto& [nid, folder] : folders_) {
      if (text::EqualIgnoringCase(folder.name, kTopName)) named.push_back(&folder);
    }
    top_ = LargestOf(named);
  }
  SourceFolder* const root = Find(nid::kRootFolder);
  if (top_ == nullptr && root != nullptr) top_ = root->children.empty() ? root : LargestOf(root->children);
  if (top_ == nullptr) {
    std::vector<SourceFolder*> alone;
    std::ranges::copy_if(parentsFirst_, std::back_inserter(alone),
                         [](const SourceFolder* folder) { return folder->parent == nullptr; });
    top_ = LargestOf(alone);
  }
}

void FolderPlan::FindDeletedItems() {
  if (top_ == nullptr) return;
  deletedItems_ = Find(defaults_.Of(DefaultFolder::kDeletedItems));
  for (SourceFolder* child : top_->children) {
    if (deletedItems_ == nullptr && text::EqualIgnoringCase(child->name, kDeletedItemsName)) deletedItems_ = child;
  }
  if (deletedItems_ != nullptr && deletedItems_->parent != top_) deletedItems_ = nullptr;
}

void FolderPlan::ChooseCopied() {
  if (top_ == nullptr) return;
  std::unordered_set<const SourceFolder*> aboveTop;
  for (const SourceFolder* above = top_->parent; above != nullptr; above = above->parent) aboveTop.insert(above);
  for (SourceFolder* folder : parentsFirst_) {
    folder->isInTree = folder == top_ || (folder->parent != nullptr && folder->parent->isInTree);
    if (folder->isInTree) {
      folder->isCopied = true;
    } else if (folder->nid != nid::kRootFolder) {
      folder->isCopied = (aboveTop.contains(folder) ? folder->messages : folder->messagesBelow) != 0;
    }
  }
}

}  // namespace velmora::complete
