// Messages and folders that no node entry in use stands for.
//
//   1  the rows of the folders' tables: which folders and messages there must be, and where
//   2  a listed message is, if there are several: what an older entry of it names, when all of that is whole and live;
//      the message that its row tells of; a copy of another message. Else nothing but its row is left
//   3  a message that no row leads to: live if the block tree says so, an older version of another, deleted if its
//      block is freed or the node tree is whole and does not name it. Where nothing tells, it is handed out as found
//   4  a folder is known by its row; its own properties are added where they are found
//   5  a message that an entry names and the tables do without is deleted, if no table is lost in which it might be
#include <algorithm>
#include <set>

#include "engine/evidence/complete_nodes.h"
#include "engine/evidence/context_pairing.h"
#include "engine/evidence/context_survey.h"
#include "engine/evidence/message_versions.h"
#include "engine/evidence/table_witness.h"
#include "engine/evidence/top_blocks.h"
#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

/// Ids for what has none: above all others and, where there is no room left, those that nobody has.
class FreeIds {
 public:
  void Note(Nid nid) { used_.push_back(IndexOf(nid)); }
  void Settle() {
    std::ranges::sort(used_);
    highest_ = used_.empty() ? kFirstFreeNidIndex : std::max(used_.back(), kFirstFreeNidIndex);
  }

  Nid Next(NidType type) {
    if (highest_ < kMaxNidIndex) return MakeNid(type, ++highest_);
    while (std::ranges::binary_search(used_, gap_)) ++gap_;
    return MakeNid(type, gap_++);
  }

 private:
  std::vector<std::uint32_t> used_;
  std::uint32_t highest_ = 0;
  std::uint32_t gap_ = kFirstFreeNidIndex;
};

class LostSearch {
 public:
  LostSearch(const EvidenceView& view, bool deleted, RunContext& run)
      : view_(view), deleted_(deleted), run_(run), sizes_(view), complete_(view.Blocks()) {
    for (const NodeClaim& claim : view_.Judged().nodes) {
      if (!IsInUse(claim.standing)) entryOf_.emplace(Canonical(claim.node.trees.bidData), &claim);
    }
  }

  LostNodes Search() {
    const TopBlocks tops = FindTopBlocks(view_, run_);
    const SubnodeLists lists(view_, tops.lists, run_);
    tables_ = ReadFolderTables(view_, tops.tables, lists, rows_, run_);
    rows_.Seal();
    survey_ = SurveyContexts(view_, tops.contexts, lists, tables_.folders, rows_, run_);
    AssignOwners(
        view_, survey_.folders, [this](Nid folder) { return ContextOf(folder); }, survey_.newerContextOf, tables_);
    existing_ = ExistingFolders(view_, tables_);
    listOf_ = PairWithLists(view_, survey_.messages, lists, sizes_, run_);
    NoteIds();

    AddFolders(lists);
    AddNodeOfTheStore(nid::kMessageStore, survey_.store, lists);
    AddNodeOfTheStore(nid::kNameToIdMap, survey_.nameMap, lists);
    AddListed();
    AddUnlisted();
    CorrectParents();
    lost_.gone = TablesAsWitness().Gone();
    std::ranges::stable_sort(lost_.nodes, {}, [](const NodeClaim& claim) { return claim.node.nid; });
    return std::move(lost_);
  }

 private:
  std::span<const MessageFacts> Messages() const { return survey_.messages.facts; }

  Bid ContextOf(Nid folder) const {
    if (const NodeClaim* claim = view_.InUse(folder)) return Canonical(claim->node.trees.bidData);
    const auto context = survey_.contextOf.find(folder);
    return context == survey_.contextOf.end() ? kNoBid : context->second;
  }

  TableWitness TablesAsWitness() const {
    return {view_, tables_, existing_, [this](Nid folder) { return ContextOf(folder); }};
  }

  void NoteIds() {
    for (const NodeClaim& claim : view_.Judged().nodes) ids_.Note(claim.node.nid);
    for (const FolderTable& table : tables_.tables) {
      for (const Nid row : table.rows) ids_.Note(row);
    }
    ids_.Settle();
  }

  void Add(const ndb::NodeEntry& node, Standing standing) { lost_.nodes.push_back({node, standing}); }

  bool IsOfUse(const FolderTable& table) const {
    return table.isCurrent && (table.folder == kNoNid || existing_.contains(table.folder));
  }

  void AddFolders(const SubnodeLists& lists) {
    if (view_.InUse(nid::kRootFolder) == nullptr) {
      lost_.folderRows.push_back({nid::kRootFolder, nid::kRootFolder, {}, {}});
    }
    for (const ListedFolder& folder : tables_.folders) {
      const FolderTable& table = tables_.tables[folder.table];
      if (view_.InUse(folder.nid) != nullptr || !IsOfUse(table) || folder.nid == nid::kRootFolder) continue;
      lost_.folderRows.push_back({folder.nid, table.folder, folder.name, folder.containerClass});
      const Bid context = ContextOf(folder.nid);
      if (context == kNoBid) continue;
      const Bid list = ListOfKeys(view_, context, KeysOfContext(view_, context), lists);
      Add({folder.nid, {context, list}, table.folder}, Standing::kFound);
    }
  }

  void AddNodeOfTheStore(Nid nid, Bid context, const SubnodeLists& lists) {
    if (context == kNoBid || view_.InUse(nid) != nullptr || view_.Judged().nodesAreExact) return;
    Add({nid, {context, ListOfKeys(view_, context, KeysOfContext(view_, context), lists)}, kNoNid}, Standing::kFound);
  }

  /// An older entry of a message all of which is live.
  const NodeClaim* LiveEntryOf(Nid nid) {
    for (const NodeClaim& claim : view_.ClaimsOf(nid)) {
      const ndb::NodeTrees& trees = claim.node.trees;
      const bool isLive = view_.StatusOf(trees.bidData) == BlockStatus::kLive &&
                          (trees.bidSub == kNoBid || view_.StatusOf(trees.bidSub) == BlockStatus::kLive);
      if (isLive && complete_.IsComplete(trees)) return &claim;
    }
    return nullptr;
  }

  /// What a node entry says of its list, of whatever age, since ids keep their meaning; else what fits.
  ndb::NodeTrees TreesOf(std::size_t message) const {
    const Bid bid = Messages()[message].bid;
    if (const NodeClaim* user = view_.UserOf(bid)) return user->node.trees;
    const auto entry = entryOf_.find(bid);
    return entry != entryOf_.end() ? entry->second->node.trees : ndb::NodeTrees{bid, listOf_[message]};
  }

  void AddListed() {
    isTaken_.resize(Messages().size());
    for (std::size_t i = 0; i < Messages().size(); ++i) isTaken_[i] = view_.IsDataInUse(Messages()[i].bid);
    std::vector<const NodeClaim*> entries(rows_.Rows().size());
    std::vector<bool> isWanted(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const RowMatching::Row& row = rows_.Rows()[i];
      if (!IsOfUse(tables_.tables[row.table])) continue;
      entries[i] = LiveEntryOf(row.nid);
      isWanted[i] = entries[i] == nullptr;
      if (entries[i] != nullptr) Take(entries[i]->node.trees.bidData);
    }
    std::vector<RowMatching::Use> uses(Messages().size());
    for (std::size_t i = 0; i < uses.size(); ++i) uses[i] = UseOf(i);
    const std::vector<std::uint32_t> messageOf = rows_.Settle(isWanted, std::move(uses), survey_.messages);
    std::set<Nid> done;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const RowMatching::Row& row = rows_.Rows()[i];
      const FolderTable& table = tables_.tables[row.table];
      if (!IsOfUse(table) || !done.insert(row.nid).second) continue;
      if (entries[i] != nullptr) {
        Add({row.nid, entries[i]->node.trees, table.folder}, Standing::kFound);
      } else if (messageOf[i] != RowMatching::kNone) {
        Add({row.nid, TreesOf(messageOf[i]), table.folder}, Standing::kFound);
        isTaken_[messageOf[i]] = true;
      } else if (!row.isHidden) {
        stubs_[row.table].push_back(row.nid);
      }
    }
    AddStubs();
  }

  void Take(Bid bid) {
    const auto message = std::ranges::lower_bound(Messages(), Canonical(bid), {}, &MessageFacts::bid);
    if (message != Messages().end() && message->bid == Canonical(bid)) {
      isTaken_[static_cast<std::size_t>(message - Messages().begin())] = true;
    }
  }

  RowMatching::Use UseOf(std::size_t message) const {
    if (isTaken_[message]) return RowMatching::Use::kTaken;
    switch (view_.StatusOf(Messages()[message].bid)) {
      case BlockStatus::kLive:
        return RowMatching::Use::kFreeAndLive;
      case BlockStatus::kUnknown:
        return RowMatching::Use::kFree;
      default:
        return RowMatching::Use::kNever;
    }
  }

  // What the rows tell of messages of which nothing else is left.
  void AddStubs() {
    for (const auto& [number, nids] : stubs_) {
      const FolderTable& table = tables_.tables[number];
      std::optional<OpenTable> open = OpenTable::Open(view_, table.trees);
      for (const Nid nid : nids) {
        MessageRow stub;
        stub.nid = nid;
        stub.nidParent = table.folder;
        const auto row = open ? open->Rows().FindRow(Value(nid)) : std::nullopt;
        if (row) {
          ltp::TableContext& rows = open->Rows();
          stub.subject = open->Text(*row, IdOf(tag::kSubject));
          stub.sender = open->Text(*row, IdOf(tag::kSentRepresentingName));
          stub.messageClass = open->Text(*row, IdOf(tag::kMessageClass));
          if (const auto time = rows.Integer64(*row, tag::kMessageDeliveryTime)) {
            stub.delivered = static_cast<std::uint64_t>(*time);
          }
          stub.size = static_cast<std::uint32_t>(rows.Integer32(*row, tag::kMessageSize).value_or(0));
        }
        lost_.messageRows.push_back(std::move(stub));
      }
    }
  }

  void AddUnlisted() {
    const bool copiesAreTaken = TablesAsWitness().TellOfAll();
    const std::vector<bool> isOlder = FindOlderVersions(view_, survey_.messages, isTaken_, copiesAreTaken);
    std::vector<std::size_t> homeless;  // positions in lost_.nodes
    for (std::size_t i = 0; i < Messages().size(); ++i) {
      const MessageFacts& message = Messages()[i];
      if (isTaken_[i]) continue;
      const auto found = entryOf_.find(message.bid);
      const NodeClaim* entry = found == entryOf_.end() ? nullptr : found->second;
      const Standing standing = StandingOf(message, entry, isOlder[i]);
      if (standing != Standing::kFound && (!deleted_ || entry != nullptr)) continue;
      ndb::NodeEntry node{.trees = TreesOf(i)};
      if (entry != nullptr && view_.InUse(entry->node.nid) == nullptr) {
        node.nid = entry->node.nid;
        node.nidParent = entry->node.nidParent;
      } else {
        node.nid = ids_.Next(message.isHidden ? NidType::kAssocMessage : NidType::kNormalMessage);
      }
      const bool isHomeless = standing == Standing::kFound && node.nidParent == kNoNid && !message.isHidden;
      if (isHomeless) homeless.push_back(lost_.nodes.size());
      Add(node, standing);
    }
    PlaceHomeless(homeless);
  }

  Standing StandingOf(const MessageFacts& message, const NodeClaim* entry, bool isOlder) {
    const BlockStatus status = view_.StatusOf(message.bid);
    if (!view_.Judged().nodesAreExact && status == BlockStatus::kLive) return Standing::kFound;
    if (isOlder) return Standing::kOlder;
    if (view_.Judged().nodesAreExact || status == BlockStatus::kFreed) return Standing::kDeleted;
    return entry != nullptr && entry->standing == Standing::kDeleted && IsGone(entry->node) ? Standing::kDeleted
                                                                                            : Standing::kFound;
  }

  // An entry that is no longer in use may be of a page without a newer one. But if all of its message is there, it
  // would have been taken for it; and where the table of its folder does without it, that is why.
  bool IsGone(const ndb::NodeEntry& entry) {
    if (complete_.IsComplete(entry.trees)) return true;
    return std::ranges::any_of(tables_.tables, [&](const FolderTable& table) {
      return table.isProven && table.isCurrent && table.kind == TableKind::kContents && table.folder == entry.nidParent;
    });
  }

  // Messages in no table are those of the folder whose table is lost, if it is lost of one folder alone and they are no
  // more than it is short of.
  void PlaceHomeless(std::span<const std::size_t> homeless) {
    std::unordered_set<Nid> withTable;
    for (const FolderTable& table : tables_.tables) {
      if (!table.isCurrent || table.kind != TableKind::kContents) continue;
      if (table.folder == kNoNid) return;
      withTable.insert(table.folder);
    }
    Nid without = kNoNid;
    std::size_t room = 0;
    for (const Nid folder : existing_) {
      const std::size_t count = withTable.contains(folder) ? 0 : TablesAsWitness().CountOf(folder);
      if (count == 0) continue;
      if (without != kNoNid) return;
      without = folder;
      room = count;
    }
    for (const NodeClaim& claim : view_.Judged().nodes) {
      const bool isThere = claim.node.nidParent == without && TypeOf(claim.node.nid) == NidType::kNormalMessage;
      if (isThere && IsInUse(claim.standing) && room > 0) --room;
    }
    if (homeless.size() > room) return;
    for (const std::size_t at : homeless) lost_.nodes[at].node.nidParent = without;
  }

  // A proven table tells more of the folder than an old entry does.
  void CorrectParents() {
    for (const FolderTable& table : tables_.tables) {
      if (!table.isProven || !IsOfUse(table) || table.kind == TableKind::kSearch) continue;
      for (const Nid row : table.rows) {
        const NodeClaim* claim = view_.InUse(row);
        if (claim == nullptr || claim->standing != Standing::kDoubtful || claim->node.nidParent == table.folder)
          continue;
        ndb::NodeEntry node = claim->node;
        node.nidParent = table.folder;
        Add(node, Standing::kDoubtful);
      }
    }
  }

  const EvidenceView& view_;
  const bool deleted_;
  RunContext& run_;
  TreeSizes sizes_;
  CompleteNodes complete_;
  RowMatching rows_;
  FolderTables tables_;
  ContextSurvey survey_;
  std::unordered_map<Bid, const NodeClaim*> entryOf_;  ///< by the data that they name: those not in use
  std::unordered_set<Nid> existing_;
  std::vector<Bid> listOf_;                          ///< of each message
  std::vector<bool> isTaken_;                        ///< likewise
  std::map<std::uint32_t, std::vector<Nid>> stubs_;  ///< by table
  FreeIds ids_;
  LostNodes lost_;
};

}  // namespace

LostNodes FindLostNodes(const EvidenceBlocks& blocks, const Evidence& evidence, const Judgement& judgement,
                        bool deleted, RunContext& run) {
  if (judgement.nodesAreExact && !deleted) return {};
  return LostSearch(EvidenceView(blocks, evidence, judgement), deleted, run).Search();
}

}  // namespace velmora::engine
