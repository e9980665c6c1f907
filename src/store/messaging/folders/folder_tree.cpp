#include "store/messaging/folders/folder_tree.h"

#include <algorithm>

#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {

void ItemRows::Add(const ItemRow& row) { rows_.push_back(row); }

ItemRow* ItemRows::Find(Nid nid) {
  const auto found = std::ranges::lower_bound(rows_, nid, {}, &ItemRow::nid);
  return found != rows_.end() && found->nid == nid && !found->deleted ? &*found : nullptr;
}

void ItemRows::Delete(Nid nid) {
  ItemRow* row = Find(nid);
  if (row == nullptr) return;
  row->deleted = true;
  ++deleted_;
  if (deleted_ * 2 <= rows_.size()) return;
  std::erase_if(rows_, [](const ItemRow& each) { return each.deleted; });
  deleted_ = 0;
}

const ItemRow* ItemRows::After(Nid nid) const {
  auto next = std::ranges::upper_bound(rows_, nid, {}, &ItemRow::nid);
  while (next != rows_.end() && next->deleted) ++next;
  return next != rows_.end() ? &*next : nullptr;
}

Folder& FolderTree::Add(Folder* parent, Nid nid, text::TextView name, text::TextView containerClass) {
  Folder& folder = *folders_.emplace_back(std::make_unique<Folder>());
  folder.nid = nid;
  folder.parent = parent;
  folder.name = NameOf(name);
  folder.containerClass = NameOf(containerClass);
  folderOfNid_.emplace(nid, &folder);
  if (parent != nullptr) {
    parent->children.push_back(&folder);
    parent->childTextBytes += (folder.name.size() + folder.containerClass.size()) * sizeof(char16_t);
    parent->childOfName.try_emplace(text::CaseFolded(folder.name), &folder);
  }
  return folder;
}

Folder* FolderTree::OfNid(Nid nid) const {
  const auto found = folderOfNid_.find(nid);
  return found != folderOfNid_.end() ? found->second : nullptr;
}

Folder* ChildOf(const Folder& parent, text::TextView name) {
  const auto found = parent.childOfName.find(text::CaseFolded(NameOf(name)));
  return found != parent.childOfName.end() ? found->second : nullptr;
}

Folder* FolderAt(Folder& top, text::TextView path) {
  Folder* folder = &top;
  while (!path.empty() && folder != nullptr) {
    if (path.front() != u'\\') return nullptr;
    path.remove_prefix(1);
    const text::TextView name = path.substr(0, path.find(u'\\'));
    folder = name.empty() ? nullptr : ChildOf(*folder, name);
    path.remove_prefix(name.size());
  }
  return folder;
}

}  // namespace velmora::messaging
