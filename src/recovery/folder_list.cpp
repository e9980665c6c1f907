#include "recovery/folder_list.h"

#include <utility>

#include "store/format/classes.h"

namespace velmora::recovery {

void NormaliseClass(FolderRecord& folder) {
  constexpr text::TextView kImap = u"IPF.Imap";
  if (folder.containerClass == kMailContainerClass) return;  // nearly all: each path looks at all folders on its way
  if (text::EqualIgnoringCase(folder.containerClass, kImap)) folder.containerClass = kMailContainerClass;
}

void FolderCollector::AddFolderRecord(FolderRecord folder) {
  const std::uint32_t nid = folder.nid;
  if (!folders_.empty()) {
    const std::uint32_t first = folders_.begin()->first;
    const auto normalise = [this](std::set<std::uint32_t>::iterator at) {
      NormaliseClass(folders_.at(*at));
      return notNormalised_.erase(at);
    };
    // Passed on the way: everything below the new folder but the first.
    for (auto at = notNormalised_.upper_bound(first); at != notNormalised_.end() && *at < nid;) at = normalise(at);
    // Where the walk stops: the first folder above it, unless that is the list's first.
    const auto next = folders_.upper_bound(nid);
    if (next != folders_.end() && next != folders_.begin()) {
      if (const auto at = notNormalised_.find(next->first); at != notNormalised_.end()) normalise(at);
    }
  }
  notNormalised_.insert(nid);
  folders_.emplace(nid, std::move(folder));
}

std::vector<FolderRecord> FolderCollector::Take() {
  std::vector<FolderRecord> result;
  result.reserve(folders_.size());
  for (auto& [nid, folder] : folders_) result.push_back(std::move(folder));
  folders_.clear();
  notNormalised_.clear();
  return result;
}

FolderList::FolderList(std::vector<FolderRecord> records)
    : records_(std::move(records)), lastVisits_(records_.size(), 0) {
  byNid_.reserve(records_.size());
  for (std::size_t i = 0; i < records_.size(); ++i) byNid_.emplace(records_[i].nid, i);
  parents_.reserve(records_.size());
  for (const FolderRecord& record : records_) {
    const auto at = byNid_.find(record.parentNid);
    parents_.push_back(at == byNid_.end() ? kNone : at->second);
  }
}

FolderRecord* FolderList::ParentOf(const FolderRecord& folder) {
  const std::size_t parent = parents_[PlaceOf(folder)];
  return parent == kNone ? nullptr : &records_[parent];
}

bool FolderList::Visit(const FolderRecord& folder) {
  return std::exchange(lastVisits_[PlaceOf(folder)], walk_) != walk_;
}

FolderRecord* FolderList::Find(std::uint32_t nid) {
  const auto at = byNid_.find(nid);
  return at == byNid_.end() ? nullptr : &records_[at->second];
}

std::vector<FolderRecord> OrderFolders(std::vector<FolderRecord> folders) {
  std::map<std::uint32_t, std::vector<std::size_t>> children;  // of each parent, in list order
  for (std::size_t i = 0; i < folders.size(); ++i) children[folders[i].parentNid].push_back(i);

  std::vector<bool> placed(folders.size(), false);
  std::vector<FolderRecord> ordered;
  ordered.reserve(folders.size());

  // One entry for each folder on the way down: its children, and how many of them have been looked at. A chain
  // of folders may be as long as the store is large, so the way down is no recursion.
  std::vector<std::pair<const std::vector<std::size_t>*, std::size_t>> way;
  const auto place = [&](std::size_t index) {
    placed[index] = true;
    if (const auto found = children.find(folders[index].nid); found != children.end()) {
      way.emplace_back(&found->second, 0);
    }
    ordered.push_back(std::move(folders[index]));
  };

  for (std::size_t anchor = 0; anchor < folders.size(); ++anchor) {
    if (placed[anchor]) continue;
    place(anchor);
    while (!way.empty()) {
      auto& [siblings, next] = way.back();
      if (next == siblings->size()) {
        way.pop_back();
        continue;
      }
      const std::size_t child = (*siblings)[next++];
      if (!placed[child]) place(child);
    }
  }
  return ordered;
}

}  // namespace velmora::recovery
