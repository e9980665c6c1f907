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

/// The row of a record that is no number; null for one that is not believed.
const FieldRow* BelievedField(const KindTables& tables, const recovery::ConversionScope& scope, std::uint16_t id) {
  const FieldRow* row = FindField(tables, LongIdOf(scope, id));
  const bool isOther = row != nullptr && row->sort == FieldSort::kOstText && scope.storeKind != engine::StoreKind::kOst;
  return isOther ? nullptr : row;
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
  if (!recovery::IsNumberType(record.wPropType)) {
    recovery::WithinFrame([&] { ApplyText(scope, block, record, item); });
  } else if (const auto field = FieldOf(scope, record)) {
    item->Put(*field, FlagValue(record.wPropType, record.dwValueHnid));
  }
}

std::optional<output::Field> KindConverter::FieldOf(const recovery::ConversionScope& scope,
                                                    const PropertyRecord& record) const {
  if (recovery::IsNumberType(record.wPropType)) {
    return FindFlag(tables_, record.wPropType, LongIdOf(scope, record.wPropId));
  }
  const FieldRow* row = BelievedField(tables_, scope, record.wPropId);
  return row == nullptr ? std::nullopt : std::optional(row->field);
}

void KindConverter::ApplyText(const recovery::ConversionScope& scope, const recovery::MessageBlock& block,
                              const PropertyRecord& record, const output::Ref<output::RDOMail>& item) const {
  const FieldRow* row = BelievedField(tables_, scope, record.wPropId);
  if (row == nullptr) return;
  const std::uint32_t position = block.Position(record.dwValueHnid);
  text::Text text = ReadStringValue(block, *scope.codePage, record.wPropType, position);
  if (text.empty() && record.wPropType != PropType::kTime) return;
  if (row->sort == FieldSort::kDate) {
    item->Put(row->field, ReadTimeValue(block, record.wPropType, position));
  } else if (ItemGuard(item, row->field)) {
    item->Put(row->field, std::move(text));
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
