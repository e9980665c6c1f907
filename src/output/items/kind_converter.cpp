// The converter of the six kinds that are no mail. Rules, in order:
//
//  1. A record whose place lies outside the block is dropped, be its value in line or not.
//  2. A number or flag with a row is written as it stands.
//  3. Any other record with a row is read as a text; one that gives none is dropped, but for a time.
//  4. A date is written. A text is written where the item's field holds something (ItemGuard).
#include <algorithm>
#include <optional>
#include <utility>

#include "output/items/item_converters.h"
#include "output/items/value_readers.h"
#include "recovery/catching_frame.h"

namespace velmora::items {
namespace {

/// The test before every text write: a text replaces what the item's field holds, and a field that holds the
/// empty text stays empty (docs/fidelity.md#text-guard). A field that was never written counts as one that holds
/// something.
bool ItemGuard(const output::Ref<output::RDOMail>& item, output::Field field) {
  const output::FieldRead held = item->Get(field);
  return !held.written || !held.AsText().empty();
}

const FieldRow* FindField(const KindTables& tables, std::uint32_t id) {
  const auto row = std::lower_bound(tables.fields.begin(), tables.fields.end(), id,
                                    [](const FieldRow& field, std::uint32_t wanted) { return field.id < wanted; });
  return row != tables.fields.end() && row->id == id ? &*row : nullptr;
}

output::FieldValue FlagValue(PropType type, std::uint32_t value) {
  switch (type) {
    case PropType::kBoolean:
      return FlagOf(value);
    case PropType::kInteger16:
      return std::int32_t{static_cast<std::int16_t>(value)};
    default:
      return static_cast<std::int32_t>(value);
  }
}

}  // namespace

void KindConverter::ApplyProperty(recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                                  const PropertyRecord& record, const output::Ref<output::RDOMail>& item) {
  if (std::uint64_t{block.Position(record.dwValueHnid)} + 4 > block.record.size) return;
  switch (record.wPropType) {
    case PropType::kBoolean:
    case PropType::kInteger32:
    case PropType::kInteger16:
      ApplyFlag(scope, record, item);
      return;
    default:
      recovery::WithinFrame([&] { ApplyText(scope, block, record, item); });
  }
}

std::optional<output::Field> KindConverter::FieldOf(const recovery::ConversionScope& scope,
                                                    const PropertyRecord& record) const {
  const std::uint32_t id = LongIdOf(scope, record.wPropId);
  switch (record.wPropType) {
    case PropType::kBoolean:
    case PropType::kInteger32:
    case PropType::kInteger16:
      return FindFlag(tables_, record.wPropType, id);
    default:
      break;
  }
  const FieldRow* row = FindField(tables_, id);
  const bool isTaken =
      row != nullptr && (row->sort != FieldSort::kOstText || scope.storeKind == engine::StoreKind::kOst);
  return isTaken ? std::optional(row->field) : std::nullopt;
}

void KindConverter::ApplyFlag(const recovery::ConversionScope& scope, const PropertyRecord& record,
                              const output::Ref<output::RDOMail>& item) const {
  const std::optional<output::Field> field = FindFlag(tables_, record.wPropType, LongIdOf(scope, record.wPropId));
  if (field) item->Put(*field, FlagValue(record.wPropType, record.dwValueHnid));
}

void KindConverter::ApplyText(const recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                              const PropertyRecord& record, const output::Ref<output::RDOMail>& item) const {
  const FieldRow* row = FindField(tables_, LongIdOf(scope, record.wPropId));
  if (row == nullptr) return;
  const std::uint32_t position = block.Position(record.dwValueHnid);
  text::Text text = ReadStringValue(block, *scope.codePage, record.wPropType, position);
  if (text.empty() && record.wPropType != PropType::kTime) return;
  switch (row->sort) {
    case FieldSort::kDate:
      item->Put(row->field, ReadTimeValue(block, record.wPropType, position));
      return;
    case FieldSort::kOstText:
      if (scope.storeKind != engine::StoreKind::kOst) return;
      [[fallthrough]];
    case FieldSort::kText:
      if (ItemGuard(item, row->field)) item->Put(row->field, std::move(text));
      return;
  }
}

recovery::ItemConverters MakeItemConverters() {
  recovery::ItemConverters converters;
  const auto at = [&converters](recovery::ItemKind kind) -> std::unique_ptr<recovery::ItemConverter>& {
    return converters[static_cast<std::size_t>(kind)];
  };
  at(recovery::ItemKind::kMail) = std::make_unique<MailConverter>();
  for (const KindTables& tables : kKindTables) at(tables.kind) = std::make_unique<KindConverter>(tables);
  return converters;
}

}  // namespace velmora::items
