#include "engine/evidence/table_witness.h"

#include <algorithm>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/property_context.h"

namespace velmora::engine {

std::optional<TableWitness::FolderSays> TableWitness::SaysOf(Nid folder) const {
  if (const ListedFolder* listed = tables_.Find(folder)) return FolderSays{listed->count, listed->hasSubfolders};
  ndb::Faults faults;
  auto context = IfReadable([&] {
    return ltp::PropertyContext::Open(view_.Blocks(), {contextOf_(folder), kNoBid}, &faults);
  });
  if (!context) return std::nullopt;
  return FolderSays{static_cast<std::uint32_t>(context->Integer32(tag::kContentCount).value_or(0)),
                    context->Boolean(tag::kSubfolders).value_or(false)};
}

std::size_t TableWitness::CountOf(Nid folder) const {
  return TypeOf(folder) == NidType::kNormalFolder ? SaysOf(folder).value_or(FolderSays{}).count : 0;
}

bool TableWitness::TellOfAll() const {
  std::unordered_map<Nid, std::size_t> rowsOf;
  std::unordered_set<Nid> withSubfolders;
  for (const FolderTable& table : tables_.tables) {
    if (!table.isCurrent || (table.kind != TableKind::kContents && table.kind != TableKind::kHierarchy)) continue;
    if (table.folder == kNoNid) return false;
    if (table.kind == TableKind::kHierarchy) withSubfolders.insert(table.folder);
    if (table.kind == TableKind::kContents) rowsOf.emplace(table.folder, table.rows.size());  // the newest comes first
  }
  if (!withSubfolders.contains(nid::kRootFolder)) return false;
  return std::ranges::all_of(existing_, [&](Nid folder) {
    if (TypeOf(folder) != NidType::kNormalFolder || folder == nid::kRootFolder) return true;
    const std::optional<FolderSays> says = SaysOf(folder);
    const auto rows = rowsOf.find(folder);
    return says && says->count == (rows == rowsOf.end() ? 0 : rows->second) &&
           (!says->hasSubfolders || withSubfolders.contains(folder));
  });
}

TableWitness::Listing TableWitness::ReadListing() const {
  Listing listing;
  for (const FolderTable& table : tables_.tables) {
    if (table.kind != TableKind::kContents || !table.isCurrent) continue;
    listing.listed.insert(table.rows.begin(), table.rows.end());
    listing.folders.insert(table.folder);
    Bid& newest = listing.newest[table.folder];
    newest = std::max(newest, table.trees.bidData);
    if (!table.isProven) continue;
    Bid& proven = listing.proven[table.folder];
    proven = std::max(proven, table.trees.bidData);
  }
  return listing;
}

std::vector<Nid> TableWitness::Gone() const {
  std::vector<Nid> gone;
  const Listing listing = ReadListing();
  if (TellOfAll()) AddGone(listing, gone);
  AddGoneOfFormer(listing, gone);
  std::ranges::sort(gone);
  const auto repeated = std::ranges::unique(gone);
  gone.erase(repeated.begin(), repeated.end());
  return gone;
}

/// Whether its folder has a table that was written after it, and none lists it.
bool TableWitness::IsGone(const NodeClaim& claim, const Listing& listing,
                          const std::unordered_map<Nid, Bid>& tableOf) const {
  const Bid data = claim.node.trees.bidData;
  const auto table = tableOf.find(claim.node.nidParent);
  return table != tableOf.end() && data < table->second && !listing.listed.contains(claim.node.nid) &&
         view_.StatusOf(data) != BlockStatus::kLive;
}

// The page that names it may be of a former time, however new: all newer ones may be lost.
void TableWitness::AddGone(const Listing& listing, std::vector<Nid>& gone) const {
  for (const NodeClaim& claim : view_.Judged().nodes) {
    const bool isMessage = TypeOf(claim.node.nid) == NidType::kNormalMessage && IsInUse(claim.standing);
    if (isMessage && IsGone(claim, listing, listing.newest)) gone.push_back(claim.node.nid);
  }
}

// A doubtful message that a former table of its folder lists, and none since the folder was written anew. The table of
// another folder, to which it may have been moved, must not be lost.
void TableWitness::AddGoneOfFormer(const Listing& listing, std::vector<Nid>& gone) const {
  const auto lacksTable = [&](Nid folder) { return !listing.folders.contains(folder) && CountOf(folder) != 0; };
  if (listing.proven.empty() || std::ranges::any_of(existing_, lacksTable)) return;
  for (const FolderTable& table : tables_.tables) {
    if (table.kind != TableKind::kContents || table.isCurrent || !listing.proven.contains(table.folder)) continue;
    for (const Nid row : table.rows) {
      const NodeClaim* claim = view_.InUse(row);
      if (claim == nullptr || claim->standing != Standing::kDoubtful || claim->node.nidParent != table.folder) continue;
      if (IsGone(*claim, listing, listing.proven)) gone.push_back(row);
    }
  }
}

}  // namespace velmora::engine
