#include "workflow/panes/tree_folders.h"

#include <vector>

namespace velmora::workflow {
namespace {

template <class Map, class Key>
const TreeFolderRecord* Find(const Map& map, Key key) {
  const auto found = map.find(key);
  return found == map.end() ? nullptr : found->second;
}

}  // namespace

const TreeFolderRecord& TreeFolders::Add(TreeFolderRecord record) {
  records_.push_back(std::move(record));
  const TreeFolderRecord& added = records_.back();
  byId_.try_emplace(added.id, &added);
  byItem_.emplace(added.item, &added);
  if (added.parent != nullptr && added.name == Root().name) parentsOfNamesakes_.insert(added.parent);
  return added;
}

void TreeFolders::Clear() { *this = {}; }

const TreeFolderRecord* TreeFolders::OfId(std::uint32_t id) const { return Find(byId_, id); }

const TreeFolderRecord* TreeFolders::OfItem(const QTreeWidgetItem* item) const { return Find(byItem_, item); }

text::Text PathOf(const TreeFolderRecord& folder) {
  std::vector<const TreeFolderRecord*> chain;
  for (const TreeFolderRecord* at = &folder; at != nullptr; at = at->parent) chain.push_back(at);
  text::Text path = u"\\";
  for (auto at = chain.rbegin(); at != chain.rend(); ++at) path.append(u"\\").append((*at)->name);
  return path;
}

}  // namespace velmora::workflow
