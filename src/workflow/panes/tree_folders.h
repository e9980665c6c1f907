// The folders that stand in the tree.
#pragma once

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <unordered_set>

#include "text/text.h"

class QTreeWidgetItem;

namespace velmora::workflow {

struct TreeFolderRecord {
  std::uint32_t id = 0;
  QTreeWidgetItem* item = nullptr;
  std::uint32_t parentId = 0;
  text::Text name = {};
  text::Text containerClass = {};  ///< empty for the root and for folders that no node stands for
  /// The folder that this one hangs under in the store; null for the root. In the tree it is the parent too,
  /// unless the store is deeper than the tree.
  const TreeFolderRecord* parent = nullptr;
  std::size_t depth = 0;  ///< 0 for the root
};

/// In the order in which they came. Records stay where they are until Clear.
class TreeFolders {
 public:
  /// The first one added is the root. `record.parent` is one of the list's own.
  const TreeFolderRecord& Add(TreeFolderRecord record);
  void Clear();

  bool IsEmpty() const { return records_.empty(); }
  const TreeFolderRecord& Root() const { return records_.front(); }
  const std::deque<TreeFolderRecord>& Records() const { return records_; }

  /// Null where there is none. Of two with the same identifier the first counts.
  const TreeFolderRecord* OfId(std::uint32_t id) const;
  const TreeFolderRecord* OfItem(const QTreeWidgetItem* item) const;

  /// Does a folder with the name of the root hang under this one?
  bool HasChildNamedAsRoot(const TreeFolderRecord& parent) const { return parentsOfNamesakes_.contains(&parent); }

 private:
  std::deque<TreeFolderRecord> records_;
  std::unordered_map<std::uint32_t, const TreeFolderRecord*> byId_;
  std::unordered_map<const QTreeWidgetItem*, const TreeFolderRecord*> byItem_;
  std::unordered_set<const TreeFolderRecord*> parentsOfNamesakes_;
};

/// The text by which the output library opens the folder: two backslashes, the store's name, and each level
/// behind a backslash.
text::Text PathOf(const TreeFolderRecord& folder);

}  // namespace velmora::workflow
