// What the tables of folders say against a message: that it is in none of them.
//
// The rows of a folder's tables are exactly its messages. So a message that no table lists is deleted, or an older
// state of another, unless the table is lost in which it would be.
#pragma once

#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/evidence/evidence_view.h"
#include "engine/evidence/folder_tables.h"

namespace velmora::engine {

class TableWitness {
 public:
  /// Of tables whose folders are known as far as they can be. `contextOf` tells where a folder's properties are. All
  /// but the last must outlive it.
  TableWitness(const EvidenceView& view, const FolderTables& tables, const std::unordered_set<Nid>& existing,
               std::function<Bid(Nid)> contextOf)
      : view_(view), tables_(tables), existing_(existing), contextOf_(std::move(contextOf)) {}

  /// How many messages a folder says it has.
  std::size_t CountOf(Nid folder) const;

  /// Whether a message that is in no table is in no folder: each folder has the tables that it says it has, and as many
  /// messages in them.
  bool TellOfAll() const;

  /// Messages of nodes in use that are no longer in their folder, or in another; ascending.
  std::vector<Nid> Gone() const;

 private:
  /// What a folder says of itself, or its row says of it.
  struct FolderSays {
    std::size_t count = 0;
    bool hasSubfolders = false;
  };
  std::optional<FolderSays> SaysOf(Nid folder) const;

  /// Current tables of messages.
  struct Listing {
    std::unordered_set<Nid> listed;
    std::unordered_set<Nid> folders;      ///< that have one
    std::unordered_map<Nid, Bid> newest;  ///< by folder
    std::unordered_map<Nid, Bid> proven;  ///< by folder, the newest of which it is certain whose it is
  };
  Listing ReadListing() const;
  bool IsGone(const NodeClaim& claim, const Listing& listing, const std::unordered_map<Nid, Bid>& tableOf) const;
  void AddGone(const Listing& listing, std::vector<Nid>& gone) const;
  void AddGoneOfFormer(const Listing& listing, std::vector<Nid>& gone) const;

  const EvidenceView& view_;
  const FolderTables& tables_;
  const std::unordered_set<Nid>& existing_;
  std::function<Bid(Nid)> contextOf_;
};

}  // namespace velmora::engine
