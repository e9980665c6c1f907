// The tables by which the records of the six kinds that are no mail become writes: one row an id, the ids
// being long ids. What has no row is dropped. Ids are numbers here and in the mail converter, since the field beside
// each says what it is, and half of them are names of the store's own map, which have no tag.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "recovery/item_converter.h"
#include "store/operations.h"

namespace velmora::items {

/// A record of a number type; it is written as it stands.
struct FlagRow {
  PropType type;
  std::uint16_t id;
  output::Field field;
};

enum class FieldSort {
  kText,
  kDate,
  kOstText,  ///< a text that only an "ost" source is believed in; dropped from any other
};

/// A record of any other type.
struct FieldRow {
  std::uint16_t id;
  output::Field field;
  FieldSort sort;
};

struct KindTables {
  recovery::ItemKind kind;
  // Those of this kind alone.
  std::span<const FlagRow> flags;
  std::span<const FieldRow> fields;  ///< ascending by id
};

/// One a kind.
extern const std::array<KindTables, recovery::kItemKinds - 1> kKindTables;

/// The field that a record of this type and long id writes on an item of this kind: by a row of the kind, or by one
/// that several kinds share.
std::optional<output::Field> FindFlag(const KindTables& tables, PropType type, std::uint32_t id);

/// The same for a record of any other type; null: none.
const FieldRow* FindField(const KindTables& tables, std::uint32_t id);

}  // namespace velmora::items
