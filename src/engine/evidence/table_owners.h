// Whose tables they are. A table does not tell its folder; of what follows, what comes first decides.
//
//   entries     a node entry of whatever age names the table: one in use ahead of an older one
//   votes       older versions of the table that entries name, a vote for each row that they share, and the parents
//               that the entries of the rows' own nodes tell, a vote each
//   hierarchy   the one with the top folder is the root's; the one with the deleted items is the top folder's; one with
//               nothing but search folders is the finder's; of the folders that have sub-folders and no table the
//               youngest that is older than all rows
//   contents    as many messages, and as many unread ones, as a folder tells, of the kind that the folder is for; among
//               several such folders the one whose own block was written nearest to the table. Folders without a table
//               come first; one whose table is named by no live entry may have a newer one, if no other fits as well
//
// A contents table that has the counts of its folder, and was written together with a version of the folder that is
// newer than the node of it, is proven.
//
// A table that is older than a proven one of the same folder is out of use. One whose folder is neither a node nor a
// row of a table in use is what is left of a deleted folder.
#pragma once

#include <functional>
#include <unordered_map>
#include <unordered_set>

#include "engine/evidence/folder_tables.h"

namespace velmora::engine {

/// The folders that the store's own properties name; kNoNid where they do not.
struct StoreFolders {
  Nid top = kNoNid;
  Nid deletedItems = kNoNid;
  Nid finder = kNoNid;
};

/// Sets folder and proof of the current tables; those that turn out not to be in use are no longer current.
/// `contextOf` gives the block that holds the properties of a folder, or kNoBid; `newerContextOf` those that are newer
/// than the folder's node.
void AssignOwners(const EvidenceView& view, const StoreFolders& store, const std::function<Bid(Nid)>& contextOf,
                  const std::unordered_map<Nid, Bid>& newerContextOf, FolderTables& tables);

/// The folders that there are: as nodes, or as rows of tables in use.
std::unordered_set<Nid> ExistingFolders(const EvidenceView& view, const FolderTables& tables);

}  // namespace velmora::engine
