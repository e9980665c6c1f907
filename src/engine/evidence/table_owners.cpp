#include "engine/evidence/table_owners.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

/// Ids between a folder and its table that were written together.
constexpr std::uint64_t kWrittenTogether = 16 * kBidStep;

constexpr NidType TypeOfTable(TableKind kind) {
  switch (kind) {
    case TableKind::kHierarchy:
      return NidType::kHierarchyTable;
    case TableKind::kContents:
      return NidType::kContentsTable;
    case TableKind::kHidden:
      return NidType::kAssocContentsTable;
    default:
      return NidType::kSearchContentsTable;
  }
}

bool HasRow(const FolderTable& table, Nid nid) { return std::ranges::binary_search(table.rows, nid); }

bool IsOpen(const FolderTable& table, TableKind kind) {
  return table.isCurrent && table.kind == kind && table.folder == kNoNid;
}

class Owners {
 public:
  Owners(const EvidenceView& view, const StoreFolders& store, const std::function<Bid(Nid)>& contextOf,
         const std::unordered_map<Nid, Bid>& newerContextOf, FolderTables& tables)
      : view_(view), store_(store), contextOf_(contextOf), newerContextOf_(newerContextOf), tables_(tables) {}

  void Assign() {
    ByEntries();
    ByVotes();
    ByFoldersOfTheStore();
    ByAge();
    ByCounts();
    ProveByNewerFolders();
    DropOlder();
  }

 private:
  void ByEntries() {
    std::map<Bid, std::vector<const NodeClaim*>> claims;
    for (const NodeClaim& claim : view_.Judged().nodes) {
      const NidType type = TypeOf(claim.node.nid);
      if (type < NidType::kHierarchyTable || type > NidType::kSearchContentsTable) continue;
      claims[Canonical(claim.node.trees.bidData)].push_back(&claim);
    }
    for (FolderTable& table : tables_.tables) {
      const auto found = claims.find(table.trees.bidData);
      if (found == claims.end()) continue;
      const NodeClaim* best = nullptr;
      for (const NodeClaim* claim : found->second) {
        if (TypeOf(claim->node.nid) != TypeOfTable(table.kind)) continue;
        if (best == nullptr || claim->standing < best->standing) best = claim;
      }
      if (best == nullptr) continue;
      table.folder = Sibling(best->node.nid, NidType::kNormalFolder);
      table.isFirm = best->standing == Standing::kLive;
      const bool isLive = view_.StatusOf(table.trees.bidData) == BlockStatus::kLive;
      table.isProven =
          table.isCurrent && table.isWhole && (table.isFirm || (isLive && best->standing == Standing::kDoubtful));
    }
  }

  void ByVotes() {
    std::vector<std::pair<Nid, Nid>> older[5];  // row and folder, by kind
    for (const FolderTable& table : tables_.tables) {
      if (table.isCurrent || table.folder == kNoNid) continue;
      for (const Nid row : table.rows) older[static_cast<std::size_t>(table.kind)].emplace_back(row, table.folder);
    }
    for (auto& rows : older) std::ranges::sort(rows);
    for (FolderTable& table : tables_.tables) {
      if (!table.isCurrent || table.folder != kNoNid || table.kind == TableKind::kSearch) continue;
      std::map<Nid, std::size_t> votes;
      const auto& rows = older[static_cast<std::size_t>(table.kind)];
      for (const Nid row : table.rows) {
        for (const auto& [same, folder] : std::ranges::equal_range(rows, row, {}, &std::pair<Nid, Nid>::first)) {
          ++votes[folder];
        }
        const auto claims = view_.ClaimsOf(row);
        if (!claims.empty() && claims.front().node.nidParent != kNoNid) ++votes[claims.front().node.nidParent];
      }
      const auto most = std::ranges::max_element(votes, {}, [](const auto& vote) { return vote.second; });
      if (most != votes.end()) table.folder = most->first;
    }
  }

  void ByFoldersOfTheStore() {
    const std::pair<Nid, Nid> known[] = {{store_.top, nid::kRootFolder},
                                         {store_.deletedItems, store_.top},
                                         {nid::kOfflineMailbox, nid::kRootFolder},
                                         {nid::kOfflineTop, nid::kOfflineMailbox},
                                         {nid::kOfflineDeletedItems, nid::kOfflineTop}};
    for (FolderTable& table : tables_.tables) {
      for (const auto& [child, parent] : known) {
        if (!IsOpen(table, TableKind::kHierarchy) || child == kNoNid || !HasRow(table, child)) continue;
        table.folder = parent;
      }
      const bool areSearches =
          std::ranges::all_of(table.rows, [](Nid row) { return TypeOf(row) == NidType::kSearchFolder; });
      if (IsOpen(table, TableKind::kHierarchy) && areSearches) table.folder = Finder();
    }
  }

  Nid Finder() const {
    if (store_.finder != kNoNid) return store_.finder;
    return tables_.Find(nid::kOfflineMailbox) != nullptr || view_.InUse(nid::kOfflineMailbox) != nullptr
               ? nid::kOfflineFinder
               : kNoNid;
  }

  // A folder is made before what it contains.
  void ByAge() {
    std::set<Nid> without;
    for (const ListedFolder& folder : tables_.folders) {
      if (folder.hasSubfolders && TypeOf(folder.nid) == NidType::kNormalFolder) without.insert(folder.nid);
    }
    std::vector<FolderTable*> open;
    for (FolderTable& table : tables_.tables) {
      if (table.isCurrent && table.kind == TableKind::kHierarchy) without.erase(table.folder);
      if (IsOpen(table, TableKind::kHierarchy)) open.push_back(&table);
    }
    std::ranges::sort(open, {}, [](const FolderTable* table) { return ~Value(table->rows.front()); });
    for (FolderTable* table : open) {
      auto folder = without.lower_bound(table->rows.front());
      if (without.empty() || (folder == without.begin() && without.size() > 1)) continue;
      if (folder != without.begin()) --folder;
      if (HasRow(*table, *folder)) continue;
      table->folder = *folder;
      without.erase(folder);
    }
  }

  void ByCounts() {
    for (const bool isOfKind : {true, false}) {
      ByCounts(isOfKind, false);
      ByCounts(isOfKind, true);
    }
  }

  void ByCounts(bool isOfKind, bool mayHaveOlder) {
    struct Group {
      std::vector<FolderTable*> tables;
      std::vector<Nid> folders;
    };
    std::map<std::tuple<std::size_t, std::size_t, ItemKind>, Group> groups;  // by messages, and unread ones
    std::map<Nid, const FolderTable*> tableOf;
    for (FolderTable& table : tables_.tables) {
      if (!table.isCurrent || table.kind != TableKind::kContents) continue;
      if (table.folder != kNoNid) {
        tableOf.emplace(table.folder, &table);  // the newest
      } else {
        groups[{table.rows.size(), table.unread, isOfKind ? table.holds : ItemKind::kMail}].tables.push_back(&table);
      }
    }
    for (const ListedFolder& folder : tables_.folders) {
      if (TypeOf(folder.nid) != NidType::kNormalFolder) continue;
      const auto table = tableOf.find(folder.nid);
      if ((table != tableOf.end()) != mayHaveOlder || (mayHaveOlder && table->second->isFirm)) continue;
      const ItemKind kind = isOfKind ? ItemKindOf(folder.containerClass) : ItemKind::kMail;
      const auto group = groups.find({folder.count, folder.unread, kind});
      if (group != groups.end()) group->second.folders.push_back(folder.nid);
    }
    for (auto& [counts, group] : groups) {
      if (group.tables.size() == 1 && group.folders.size() == 1) {
        FolderTable& table = *group.tables.front();
        const auto other = tableOf.find(group.folders.front());
        const bool isNewer = other == tableOf.end() || other->second->trees.bidData < table.trees.bidData;
        if (isNewer) table.folder = group.folders.front();
      } else if (!mayHaveOlder) {
        ByDistance(group.tables, group.folders);
      }
    }
  }

  // Each table gets the folder that was written nearest to it; the nearest pairs go first. What was not written
  // together goes by age, if as many folders as tables are left; else again the nearest.
  void ByDistance(std::span<FolderTable* const> tables, std::span<const Nid> folders) const {
    std::map<Bid, Nid> free;
    for (const Nid folder : folders) {
      if (const Bid context = contextOf_(folder); context != kNoBid) free.emplace(context, folder);
    }
    const auto nearest = [&](const FolderTable& table) {
      auto above = free.lower_bound(table.trees.bidData);
      if (above == free.begin()) return above;
      const auto below = std::prev(above);
      return above == free.end() || Distance(below->first, table) <= Distance(above->first, table) ? below : above;
    };
    std::vector<std::pair<std::uint64_t, FolderTable*>> order;
    for (FolderTable* table : tables) {
      if (!free.empty()) order.emplace_back(Distance(nearest(*table)->first, *table), table);
    }
    std::ranges::stable_sort(order, {}, &std::pair<std::uint64_t, FolderTable*>::first);
    std::erase_if(order, [&](const auto& nearestOf) {
      const auto& [distance, table] = nearestOf;
      if (distance > kWrittenTogether || free.empty()) return false;
      const auto folder = nearest(*table);
      if (Distance(folder->first, *table) > kWrittenTogether) return false;
      table->folder = folder->second;
      free.erase(folder);
      return true;
    });
    if (order.size() == free.size()) {
      std::ranges::sort(order, {}, [](const auto& nearestOf) { return nearestOf.second->trees.bidData; });
      for (const auto& [distance, table] : order) {
        table->folder = free.begin()->second;
        free.erase(free.begin());
      }
    }
    for (const auto& [distance, table] : order) {
      if (free.empty()) return;
      const auto folder = nearest(*table);
      table->folder = folder->second;
      free.erase(folder);
    }
  }

  void ProveByNewerFolders() {
    for (FolderTable& table : tables_.tables) {
      if (!table.isCurrent || !table.isWhole || table.kind != TableKind::kContents) continue;
      const auto context = newerContextOf_.find(table.folder);
      if (context == newerContextOf_.end() || Distance(context->second, table) > kWrittenTogether) continue;
      const ListedFolder* folder = tables_.Find(table.folder);
      table.isProven = table.isProven || (folder->count == table.rows.size() && folder->unread == table.unread);
    }
  }

  static std::uint64_t Distance(Bid bid, const FolderTable& table) {
    const std::uint64_t a = Value(bid);
    const std::uint64_t b = Value(table.trees.bidData);
    return a < b ? b - a : a - b;
  }

  void DropOlder() {
    std::map<std::pair<TableKind, Nid>, Bid> proven;
    for (const FolderTable& table : tables_.tables) {
      if (!table.isProven) continue;
      Bid& newest = proven[{table.kind, table.folder}];
      newest = std::max(newest, table.trees.bidData);
    }
    for (FolderTable& table : tables_.tables) {
      const auto newest = proven.find({table.kind, table.folder});
      if (newest != proven.end() && table.trees.bidData < newest->second) table.isCurrent = false;
    }
  }

  const EvidenceView& view_;
  const StoreFolders& store_;
  const std::function<Bid(Nid)>& contextOf_;
  const std::unordered_map<Nid, Bid>& newerContextOf_;
  FolderTables& tables_;
};

}  // namespace

void AssignOwners(const EvidenceView& view, const StoreFolders& store, const std::function<Bid(Nid)>& contextOf,
                  const std::unordered_map<Nid, Bid>& newerContextOf, FolderTables& tables) {
  Owners(view, store, contextOf, newerContextOf, tables).Assign();
}

std::unordered_set<Nid> ExistingFolders(const EvidenceView& view, const FolderTables& tables) {
  std::unordered_map<Nid, std::vector<Nid>> rowsOf;
  std::vector<Nid> open = {nid::kRootFolder};
  for (const NodeClaim& claim : view.Judged().nodes) {
    const NidType type = TypeOf(claim.node.nid);
    const bool isFolder = type == NidType::kNormalFolder || type == NidType::kSearchFolder;
    if (isFolder && IsInUse(claim.standing)) open.push_back(claim.node.nid);
  }
  for (const FolderTable& table : tables.tables) {
    if (!table.isCurrent || table.kind != TableKind::kHierarchy) continue;
    std::vector<Nid>& rows = table.folder == kNoNid ? open : rowsOf[table.folder];
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());
  }
  std::unordered_set<Nid> existing;
  while (!open.empty()) {
    const Nid folder = open.back();
    open.pop_back();
    if (!existing.insert(folder).second) continue;
    const auto rows = rowsOf.find(folder);
    if (rows != rowsOf.end()) open.insert(open.end(), rows->second.begin(), rows->second.end());
  }
  return existing;
}

}  // namespace velmora::engine
