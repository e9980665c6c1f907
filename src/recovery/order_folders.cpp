#include <map>
#include <utility>

#include "recovery/folder_list.h"

namespace velmora::recovery {

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
