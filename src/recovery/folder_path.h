// The one rule for a folder's path in the new store.
#pragma once

#include <cstdint>

#include "recovery/folder_list.h"
#include "text/text.h"

namespace velmora::recovery {

/// Stands for a folder that is not known. No folder's own path can be equal to it: those begin with a backslash.
inline constexpr text::TextView kLostFolderName = u"Lost & Found";

/// The folder of all orphans, which the new store has below its top.
inline constexpr text::TextView kOrphanFolderName = u"Orphaned Mails";

/// UTF-16 units and levels: several times what the deepest folder that people make needs.
inline constexpr std::size_t kLongestPath = 8192;
inline constexpr std::size_t kDeepestFolder = 1000;

/// Each name from below the store's root down to the folder, preceded by a backslash; names are not cleaned. The
/// chain ends below `topFolderNid`, below the root node, and at the first parent that has no record; a chain that
/// comes back on itself ends at the first identifier seen twice. The folder `topFolderNid` itself has the empty
/// path; an identifier without a record gives kLostFolderName. Normalises the class of every folder on the way.
/// A chain also ends where its path would be longer or deeper than the limits, so the cost is bounded in a store whose
/// folders are one chain.
text::Text BuildFolderPath(FolderList& folders, std::uint32_t topFolderNid, std::uint32_t nid);

/// A path cut at its last backslash: what stands before it and what stands after it. Without one the parent is
/// empty and the leaf is the whole.
struct SplitPath {
  text::TextView parentPath;
  text::TextView leaf;
};
SplitPath SplitAtLeaf(text::TextView path);

/// The form in which the output library takes a path: two backslashes, the store's name, the path.
text::Text TargetPath(text::TextView convertedName, text::TextView path);

}  // namespace velmora::recovery
