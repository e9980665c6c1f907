#include "recovery/folder_path.h"

#include <ranges>
#include <unordered_set>
#include <vector>

#include "recovery/property_ids.h"

namespace velmora::recovery {

text::Text BuildFolderPath(FolderList& folders, std::uint32_t topFolderNid, std::uint32_t nid) {
  if (nid == topFolderNid) return {};

  std::vector<const FolderRecord*> chain;  // from the folder upwards
  std::unordered_set<std::uint32_t> seen;
  std::size_t length = 0;
  for (std::uint32_t current = nid; current != topFolderNid && seen.insert(current).second;) {
    FolderRecord* folder = folders.Find(current);
    if (folder == nullptr) break;
    length += 1 + folder->name.size();
    if (!chain.empty() && (length > kLongestPath || chain.size() == kDeepestFolder)) break;
    chain.push_back(folder);
    NormaliseClass(*folder);
    current = folder->parentNid;
    if (current == kRootFolderNid) break;
  }
  if (chain.empty()) return text::Text(kLostFolderName);

  text::Text path;
  for (const FolderRecord* folder : std::views::reverse(chain)) {
    path += u'\\';
    path += folder->name;
  }
  return path;
}

SplitPath SplitAtLeaf(text::TextView path) {
  const std::size_t cut = path.rfind(u'\\');
  if (cut == text::TextView::npos) return {{}, path};
  return {path.substr(0, cut), path.substr(cut + 1)};
}

text::Text TargetPath(text::TextView convertedName, text::TextView path) {
  return text::Text(u"\\\\").append(convertedName).append(path);
}

}  // namespace velmora::recovery
