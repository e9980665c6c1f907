#include "engine/evidence/folder_tables.h"

#include <algorithm>
#include <unordered_set>

#include "store/format/property_tags.h"

namespace velmora::engine {
namespace {

constexpr std::uint32_t kReadFlag = 1;

/// Of the bytes that all tables together have, so often may they be read: versions of a long table share blocks.
constexpr std::uint64_t kMostVersionsOfTable = 16;

class Reading {
 public:
  Reading(const EvidenceView& view, const SubnodeLists& lists, RowMatching& matching, RunContext& run)
      : view_(view), lists_(lists), matching_(matching), run_(run) {
    for (const NodeClaim& claim : view.Judged().nodes) {
      const NidType type = TypeOf(claim.node.nid);
      if (type >= NidType::kHierarchyTable && type <= NidType::kSearchContentsTable) {
        named_.push_back({Canonical(claim.node.trees.bidData), claim.node.trees.bidSub});
      }
    }
    std::ranges::sort(named_, {}, &ndb::NodeTrees::bidData);
    for (const FoundBlock& block : view.Found().blocks) mostRows_ += block.cb;
    mostRows_ = mostRows_ / sizeof(Nid) * kMostVersionsOfTable;
  }

  FolderTables Read(std::span<const Bid> bids) {
    for (std::size_t i = bids.size(); i-- > 0 && rowsRead_ <= mostRows_;) ReadTable(bids[i]);  // the newest first
    std::ranges::stable_sort(all_.folders, {}, &ListedFolder::nid);
    const auto repeated = std::ranges::unique(all_.folders, {}, &ListedFolder::nid);
    all_.folders.erase(repeated.begin(), repeated.end());
    return std::move(all_);
  }

 private:
  void ReadTable(Bid bid) {
    run_.control.PausePoint();
    std::optional<TableShape> shape = ReadShape(view_, bid);
    if (!shape || shape->kind == TableKind::kOther) return;
    rowsRead_ += shape->rows.size();
    std::vector<Bid> lists;
    for (const ndb::NodeTrees& trees : std::ranges::equal_range(named_, bid, {}, &ndb::NodeTrees::bidData)) {
      if (lists.empty() || lists.back() != trees.bidSub) lists.push_back(trees.bidSub);
    }
    FolderTable table{.trees = {bid, ListOfTable(view_, bid, *shape, lists, lists_)}, .kind = shape->kind};
    table.isCurrent = IsCurrent(bid, *shape);
    if (table.isCurrent) ReadRows(table, *shape);
    table.rows = std::move(shape->rows);
    all_.tables.push_back(std::move(table));
  }

  bool IsCurrent(Bid bid, const TableShape& shape) {
    if (view_.IsFreed(bid)) return false;
    bool isNewest = true;
    for (const Nid row : shape.rows) {
      const bool isFirst = rowsSeen_[static_cast<std::size_t>(shape.kind)].insert(row).second;
      isNewest = isNewest && isFirst;
    }
    return isNewest || view_.Judged().blocksAreExact;
  }

  void ReadRows(FolderTable& table, const TableShape& shape) {
    std::optional<OpenTable> open = OpenTable::Open(view_, table.trees);
    if (!open) return;
    ltp::TableContext& rows = open->Rows();
    for (std::size_t i = 0; i < rows.RowCount(); ++i) {
      const Nid nid{rows.RowId(i)};
      const auto number = static_cast<std::uint32_t>(all_.tables.size());
      switch (table.kind) {
        case TableKind::kHierarchy:
          ReadFolder(*open, i, {.nid = nid, .table = number});
          break;
        case TableKind::kSearch:  // its rows are of messages of other folders
          break;
        default:
          if ((rows.Integer32(i, tag::kMessageFlags).value_or(kReadFlag) & kReadFlag) == 0) ++table.unread;
          if (view_.InUse(nid) == nullptr) {
            matching_.AddRow({.nid = nid, .table = number, .isHidden = table.kind == TableKind::kHidden}, rows, i);
          }
          break;
      }
    }
    if (table.kind == TableKind::kContents) table.holds = ItemKindOf(open->Text(0, IdOf(tag::kMessageClass)));
    table.isWhole = open->IsWhole() && rows.RowCount() == shape.rows.size();
  }

  void ReadFolder(OpenTable& open, std::size_t row, ListedFolder folder) {
    ltp::TableContext& rows = open.Rows();
    const auto bytes = [&](PropTag tag) {
      const auto cell = [&] { return rows.Cell(row, open.ColumnOf(IdOf(tag))); };
      return IfReadable(cell).value_or(std::nullopt).value_or(std::vector<std::byte>{});
    };
    folder.name = open.Text(row, IdOf(tag::kDisplayName));
    folder.containerClass = open.Text(row, IdOf(tag::kContainerClass));
    folder.count = static_cast<std::uint32_t>(rows.Integer32(row, tag::kContentCount).value_or(0));
    folder.unread = static_cast<std::uint32_t>(rows.Integer32(row, tag::kContentUnreadCount).value_or(0));
    folder.hasSubfolders = rows.Boolean(row, tag::kSubfolders).value_or(false);
    folder.fingerprint = FolderFingerprint(bytes(tag::kDisplayName), bytes(tag::kContainerClass), folder.count,
                                           folder.unread, folder.hasSubfolders);
    all_.folders.push_back(std::move(folder));
  }

  const EvidenceView& view_;
  const SubnodeLists& lists_;
  RowMatching& matching_;
  RunContext& run_;
  std::vector<ndb::NodeTrees> named_;    ///< by entries, of whatever age
  std::unordered_set<Nid> rowsSeen_[5];  ///< by kind: in tables that are not freed
  std::uint64_t mostRows_ = 0;
  std::uint64_t rowsRead_ = 0;
  FolderTables all_;
};

}  // namespace

ItemKind ItemKindOf(text::TextView itemClass) {
  const ItemKind kind = KindOfClass(itemClass).value_or(ItemKind::kMail);
  return kind == ItemKind::kMeeting ? ItemKind::kMail : kind;
}

std::uint32_t FolderFingerprint(std::span<const std::byte> name, std::span<const std::byte> containerClass,
                                std::uint32_t count, std::uint32_t unread, bool hasSubfolders) {
  const std::uint32_t parts[] = {HashOf(name), HashOf(containerClass), count, unread, std::uint32_t{hasSubfolders}};
  return HashOf(std::as_bytes(std::span(parts)));
}

const ListedFolder* FolderTables::Find(Nid folder) const {
  const auto listed = std::ranges::lower_bound(folders, folder, {}, &ListedFolder::nid);
  return listed != folders.end() && listed->nid == folder ? &*listed : nullptr;
}

FolderTables ReadFolderTables(const EvidenceView& view, std::span<const Bid> bids, const SubnodeLists& lists,
                              RowMatching& matching, RunContext& run) {
  return Reading(view, lists, matching, run).Read(bids);
}

}  // namespace velmora::engine
