// The tables of folders as witnesses: which folders and messages there are, and in which folder.
//
// In a sound store the rows of a folder's tables are exactly its sub-folders, messages and hidden items, so a table is
// as good as the node entries, and lies elsewhere.
//
// A table is rewritten whole, so versions of it share rows. A message that is moved stands in two tables for no longer
// than it takes to write both. So of the tables that share a row the newest that is not freed is current; where the
// block tree is whole it tells itself.
#pragma once

#include <vector>

#include "engine/evidence/row_matching.h"
#include "engine/evidence/table_shape.h"
#include "store/format/classes.h"

namespace velmora::engine {

struct FolderTable {
  ndb::NodeTrees trees{};
  TableKind kind = TableKind::kOther;
  bool isCurrent = false;
  bool isWhole = false;              ///< all of it was read
  bool isProven = false;             ///< a node entry that is in use says whose it is, and its block is live
  Nid folder = kNoNid;               ///< whose it is, as far as that is known
  bool isFirm = false;               ///< no newer table can be that of its folder, as far as entries tell
  ItemKind holds = ItemKind::kMail;  ///< of contents: what the first row is
  std::uint32_t unread = 0;          ///< of contents: rows of unread messages
  std::vector<Nid> rows = {};        ///< by ascending id
};

/// A folder as its row in a current hierarchy table has it.
struct ListedFolder {
  Nid nid{};
  std::uint32_t table = 0;
  text::Text name = {};
  text::Text containerClass = {};
  std::uint32_t count = 0;
  std::uint32_t unread = 0;
  bool hasSubfolders = false;
  std::uint32_t fingerprint = 0;  ///< see FolderFingerprint
};

/// What a folder or an item of that class is; all that is nothing special is mail.
ItemKind ItemKindOf(text::TextView itemClass);

/// A hash of what the row of a folder and the folder itself have in common.
std::uint32_t FolderFingerprint(std::span<const std::byte> name, std::span<const std::byte> containerClass,
                                std::uint32_t count, std::uint32_t unread, bool hasSubfolders);

struct FolderTables {
  std::vector<FolderTable> tables;    ///< those with rows, the newest first
  std::vector<ListedFolder> folders;  ///< by ascending id, one of each

  const ListedFolder* Find(Nid folder) const;
};

/// Rows of messages that no node in use stands for go to `matching`.
FolderTables ReadFolderTables(const EvidenceView& view, std::span<const Bid> bids, const SubnodeLists& lists,
                              RowMatching& matching, RunContext& run);

}  // namespace velmora::engine
