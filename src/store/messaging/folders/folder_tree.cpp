#include "store/messaging/folders/folder_tree.h"

#include <algorithm>

#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

std::uint64_t TextBytes(const Folder& folder) {
  return (folder.name.size() + folder.containerClass.size()) * sizeof(char16_t);
}

}  // namespace

void ItemRows::Put(const ItemRow& row) {
  const bool isLast = rows_.empty() || rows_.back().nid < row.nid;
  const auto place = isLast ? rows_.end() : std::ranges::lower_bound(rows_, row.nid, {}, &ItemRow::nid);
  const bool isKnown = place != rows_.end() && place->nid == row.nid;
  if (isKnown && place->deleted) --deleted_;
  if (isKnown && !place->deleted) {
    unread_ -= static_cast<std::size_t>(place->unread);
    rowBytes_ -= place->size;
  }
  unread_ += static_cast<std::size_t>(row.unread);
  rowBytes_ += row.size;
  if (isKnown) {
    *place = row;
  } else {
    rows_.insert(place, row);
  }
}

const ItemRow* ItemRows::Find(Nid nid) const {
  const auto found = std::ranges::lower_bound(rows_, nid, {}, &ItemRow::nid);
  return found != rows_.end() && found->nid == nid && !found->deleted ? &*found : nullptr;
}

void ItemRows::Delete(Nid nid) {
  ItemRow& row = *std::ranges::lower_bound(rows_, nid, {}, &ItemRow::nid);
  row.deleted = true;
  ++deleted_;
  unread_ -= static_cast<std::size_t>(row.unread);
  rowBytes_ -= row.size;
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
  folder.name = name;
  folder.containerClass = containerClass;
  folderOfNid_.emplace(nid, &folder);
  if (parent != nullptr) {
    parent->children.push_back(&folder);
    parent->childTextBytes += TextBytes(folder);
    parent->childOfName.try_emplace(text::CaseFolded(folder.name), &folder);
  }
  return folder;
}

void FolderTree::Rename(Folder& folder, text::TextView name, text::TextView containerClass) {
  Folder& parent = *folder.parent;
  const auto forget = parent.childOfName.find(text::CaseFolded(folder.name));
  if (forget != parent.childOfName.end() && forget->second == &folder) parent.childOfName.erase(forget);
  parent.childTextBytes -= TextBytes(folder);
  folder.name = name;
  folder.containerClass = containerClass;
  parent.childTextBytes += TextBytes(folder);
  parent.childOfName.try_emplace(text::CaseFolded(folder.name), &folder);
}

Folder* FolderTree::OfNid(Nid nid) const {
  const auto found = folderOfNid_.find(nid);
  return found != folderOfNid_.end() ? found->second : nullptr;
}

Folder* ChildOf(const Folder& parent, text::TextView name) {
  const auto found = parent.childOfName.find(text::CaseFolded(name));
  return found != parent.childOfName.end() ? found->second : nullptr;
}

Folder* FolderAt(Folder& top, text::TextView path) {
  Folder* folder = &top;
  while (!path.empty() && folder != nullptr) {
    if (path.front() != u'\\') return nullptr;
    path.remove_prefix(1);
    const text::TextView name = path.substr(0, path.find(u'\\'));
    folder = name.empty() ? nullptr : ChildOf(*folder, NameOf(name));
    path.remove_prefix(name.size());
  }
  return folder;
}

}  // namespace velmora::messaging
