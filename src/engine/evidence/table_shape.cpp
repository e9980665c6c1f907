#include "engine/evidence/table_shape.h"

#include <algorithm>

#include "store/format/heap_format.h"
#include "store/format/little_endian.h"
#include "store/format/property_tags.h"
#include "store/ltp/bth.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_info.h"
#include "text/code_page.h"

namespace velmora::engine {
namespace {

constexpr std::uint16_t kParentId = 0x67F1;
constexpr Nid kFirstRowOfFolder{0x20};  ///< rows of other tables count from 0 or 1

/// Lists that are tried for one table, those that were written nearest to it.
constexpr std::size_t kMostListsTried = 64;

bool HasColumn(const ltp::TableInfo& info, PropTag tag) {
  return std::ranges::any_of(info.columns, [tag](const ltp::Column& c) { return IdOf(c.tag) == IdOf(tag); });
}

TableKind TableKindOf(const ltp::TableInfo& info, std::span<const Nid> rows) {
  if (rows.empty() || rows.front() < kFirstRowOfFolder) return TableKind::kOther;
  const auto all = [&](auto isOfType) {
    return std::ranges::all_of(rows, [&](Nid nid) { return isOfType(TypeOf(nid)); });
  };
  if (HasColumn(info, MakeTag(kParentId, PropType::kInteger32))) return TableKind::kSearch;
  if (HasColumn(info, tag::kDisplayName) &&
      all([](NidType type) { return type == NidType::kNormalFolder || type == NidType::kSearchFolder; })) {
    return TableKind::kHierarchy;
  }
  if (!HasColumn(info, tag::kMessageClass)) return TableKind::kOther;
  if (all([](NidType type) { return type == NidType::kNormalMessage; })) return TableKind::kContents;
  if (all([](NidType type) { return type == NidType::kAssocMessage; })) return TableKind::kHidden;
  return TableKind::kOther;
}

/// A sub-node that one of the rows in the heap has a value in.
std::optional<Nid> BesideRows(const ltp::TableInfo& info, std::span<const std::byte> rows) {
  const std::size_t rowSize = info.rgib[3];
  for (std::size_t at = 0; at + rowSize <= rows.size(); at += rowSize) {
    const auto row = rows.subspan(at, rowSize);
    for (const ltp::Column& column : info.columns) {
      if (FixedSize(TypeOf(column.tag)) || !ltp::HasCell(row, info.rgib[2], column.iBit)) continue;
      const auto hnid = Load<std::uint32_t>(row, column.ibData);
      if (!IsHid(hnid)) return Nid{hnid};
    }
  }
  return std::nullopt;
}

/// Whether the rows that the list leads to are those of the index.
bool Fits(const EvidenceView& view, Bid bid, Bid list, std::span<const Nid> rows) {
  std::optional<OpenTable> table = OpenTable::Open(view, {bid, list});
  if (!table || table->Rows().RowCount() != rows.size()) return false;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto id = table->Rows().Integer32(i, tag::kLtpRowId);
    if (!id || Nid{static_cast<std::uint32_t>(*id)} != rows[i]) return false;
  }
  return true;
}

}  // namespace

std::optional<TableShape> ReadShape(const EvidenceView& view, Bid bid) {
  ndb::Faults faults;
  auto heap = IfReadable([&] { return ltp::Heap::Open(view.Blocks(), bid, ClientSig::kTableContext, &faults); });
  if (!heap) return std::nullopt;
  const auto infoBytes = heap->Find(heap->UserRoot());
  if (!infoBytes) return std::nullopt;
  const auto info = IfReadable([&] { return ltp::DecodeTableInfo(*infoBytes, view.Format()); });
  if (!info) return std::nullopt;

  TableShape shape;
  const ltp::BthLayout layout = ltp::RowIndexLayout(view.Format());
  if (const auto index =
          IfReadable([&] { return ltp::ReadBth(*heap, info->hidRowIndex, layout, ltp::kMaxRows, &faults); })) {
    for (std::size_t at = 0; at < index->size(); at += layout.LeafRecord()) shape.rows.push_back(LoadNid(*index, at));
  }
  std::ranges::sort(shape.rows);
  shape.kind = TableKindOf(*info, shape.rows);
  if (info->hnidRows != 0 && !IsHid(info->hnidRows)) {
    shape.beside = Nid{info->hnidRows};
  } else if (const auto rows = heap->Find(info->hnidRows)) {
    shape.beside = BesideRows(*info, *rows);
  }
  return shape;
}

std::optional<OpenTable> OpenTable::Open(const EvidenceView& view, const ndb::NodeTrees& trees) {
  OpenTable open;
  open.faults_ = std::make_unique<ndb::Faults>();
  auto table = IfReadable([&] { return ltp::TableContext::Open(view.Blocks(), trees, open.faults_.get()); });
  if (!table) return std::nullopt;
  open.table_.emplace(std::move(*table));
  return open;
}

PropTag OpenTable::ColumnOf(std::uint16_t id) const {
  const auto columns = table_->Columns();
  const auto column = std::ranges::find(columns, id, [](const ltp::Column& c) { return IdOf(c.tag); });
  return column == columns.end() ? 0 : column->tag;
}

text::Text OpenTable::Text(std::size_t row, std::uint16_t id) {
  const PropTag tag = ColumnOf(id);
  const auto cell = IfReadable([&] { return table_->Cell(row, tag); }).value_or(std::nullopt);
  if (!cell) return {};
  if (TypeOf(tag) == PropType::kString) return ltp::DecodeText(*cell);
  if (TypeOf(tag) != PropType::kString8) return {};
  return text::CodePage::Lossless().Decode({reinterpret_cast<const char*>(cell->data()), cell->size()});
}

Bid ListOfTable(const EvidenceView& view, Bid bid, const TableShape& shape, std::span<const Bid> named,
                const SubnodeLists& lists) {
  if (!shape.beside) return kNoBid;
  for (const Bid list : named) {
    if (list != kNoBid && Fits(view, bid, list, shape.rows)) return list;
  }
  std::vector<Bid> candidates;
  for (const SubnodeLists::Entry& entry : lists.Holding(*shape.beside)) {
    candidates.push_back(lists.All()[entry.list].bid);
  }
  if (candidates.size() > kMostListsTried) {
    const auto distance = [bid](Bid list) { return list < bid ? Value(bid) - Value(list) : Value(list) - Value(bid); };
    std::ranges::nth_element(candidates, candidates.begin() + kMostListsTried, {}, distance);
    candidates.resize(kMostListsTried);
  }
  std::ranges::sort(candidates, {}, [&](Bid list) { return std::pair(view.IsFreed(list), ~Value(list)); });
  for (const Bid list : candidates) {
    if (Fits(view, bid, list, shape.rows)) return list;
  }
  return kNoBid;
}

}  // namespace velmora::engine
