#include "recovery/folder_path.h"

#include <ranges>
#include <vector>

#include "store/format/store_nodes.h"

namespace velmora::recovery {

text::Text BuildFolderPath(FolderList& folders, std::uint32_t topFolderNid, std::uint32_t nid) {
  if (nid == topFolderNid) return {};

  std::vector<const FolderRecord*> chain;  // from the folder upwards
  std::size_t length = 0;
  folders.BeginWalk();
  for (FolderRecord* folder = folders.Find(nid); folder != nullptr && folder->nid != topFolderNid;) {
    length += 1 + folder->name.size();
    if (!chain.empty() && (length > kLongestPath || chain.size() == kDeepestFolder)) break;
    if (!folders.Visit(*folder)) break;
    chain.push_back(folder);
    NormaliseClass(*folder);
    folder = folder->parentNid == Value(nid::kRootFolder) ? nullptr : folders.ParentOf(*folder);
  }
  if (chain.empty()) return text::Text(kLostFolderName);

  text::Text path;
  path.reserve(length);
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
