#include "output/items/kind_converter.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "output/items/common_flags.h"
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

std::optional<output::Field> FindFlag(const KindTables& tables, std::uint16_t type, std::uint32_t id) {
  const auto row = std::find_if(tables.flags.begin(), tables.flags.end(),
                                [&](const FlagRow& flag) { return flag.type == type && flag.id == id; });
  return row != tables.flags.end() ? row->field : FindCommonFlag(tables.kind, type, id);
}

const FieldRow* FindField(const KindTables& tables, std::uint32_t id) {
  const auto row = std::lower_bound(tables.fields.begin(), tables.fields.end(), id,
                                    [](const FieldRow& field, std::uint32_t wanted) { return field.id < wanted; });
  return row != tables.fields.end() && row->id == id ? &*row : nullptr;
}

output::FieldValue FlagValue(std::uint16_t type, std::uint32_t value) {
  switch (type) {
    case kTypeBoolean:
      return FlagOf(value);
    case kTypeShort:
      return std::int32_t{static_cast<std::int16_t>(value)};
    default:
      return static_cast<std::int32_t>(value);
  }
}

}  // namespace

void KindConverter::ApplyProperty(recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                                  const recovery::PropertyRecord& record, const output::Ref<output::RDOMail>& item) {
  if (std::uint64_t{block.Position(record.value)} + 4 > block.record.size) return;
  switch (record.type) {
    case kTypeBoolean:
    case kTypeLong:
    case kTypeShort:
      ApplyFlag(scope, record, item);
      return;
    default:
      recovery::WithinFrame([&] { ApplyText(scope, block, record, item); });
  }
}

std::optional<output::Field> KindConverter::FieldOf(const recovery::ConversionScope& scope,
                                                    const recovery::PropertyRecord& record) const {
  const std::uint32_t id = LongIdOf(scope, record.id);
  switch (record.type) {
    case kTypeBoolean:
    case kTypeLong:
    case kTypeShort:
      return FindFlag(tables_, record.type, id);
    default:
      break;
  }
  const FieldRow* row = FindField(tables_, id);
  const bool isTaken =
      row != nullptr && (row->sort != FieldSort::kOstText || scope.storeKind == engine::StoreKind::kOst);
  return isTaken ? std::optional(row->field) : std::nullopt;
}

void KindConverter::ApplyFlag(const recovery::ConversionScope& scope, const recovery::PropertyRecord& record,
                              const output::Ref<output::RDOMail>& item) const {
  const std::optional<output::Field> field = FindFlag(tables_, record.type, LongIdOf(scope, record.id));
  if (field) item->Put(*field, FlagValue(record.type, record.value));
}

void KindConverter::ApplyText(const recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                              const recovery::PropertyRecord& record, const output::Ref<output::RDOMail>& item) const {
  const FieldRow* row = FindField(tables_, LongIdOf(scope, record.id));
  if (row == nullptr) return;
  const std::uint32_t position = block.Position(record.value);
  text::Text text = ReadStringValue(block, *scope.codePage, record.type, position);
  if (text.empty() && record.type != kTypeTime) return;
  switch (row->sort) {
    case FieldSort::kDate:
      item->Put(row->field, ReadTimeValue(block, record.type, position));
      return;
    case FieldSort::kOstText:
      if (scope.storeKind != engine::StoreKind::kOst) return;
      [[fallthrough]];
    case FieldSort::kText:
      if (ItemGuard(item, row->field)) item->Put(row->field, std::move(text));
      return;
  }
}

}  // namespace velmora::items
