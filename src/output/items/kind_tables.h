// The tables by which the records of the six kinds that are no mail become writes: one row an id, the ids
// being long ids. What has no row is dropped.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "output/items/property_records.h"
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
  std::span<const FlagRow> flags;    ///< those of this kind alone; the common ones are in common_flags.h
  std::span<const FieldRow> fields;  ///< ascending by id
};

extern const KindTables kContactTables;
extern const KindTables kTaskTables;
extern const KindTables kAppointmentTables;
extern const KindTables kMeetingTables;
extern const KindTables kJournalTables;
extern const KindTables kNoteTables;

/// Is the field of the type that such a record carries?
constexpr bool Fits(PropType type, output::Field field) {
  switch (output::InfoOf(field).type) {
    case output::FieldType::Flag:
      return type == PropType::kBoolean;
    case output::FieldType::Number:
      return type == PropType::kInteger32;
    case output::FieldType::Number16:
      return type == PropType::kInteger16;
    default:
      return false;
  }
}

constexpr bool IsSound(std::span<const FlagRow> rows) {
  return std::all_of(rows.begin(), rows.end(), [](const FlagRow& row) { return Fits(row.type, row.field); });
}

constexpr bool IsSound(std::span<const FieldRow> rows) {
  const bool ascending = std::adjacent_find(rows.begin(), rows.end(), [](const FieldRow& a, const FieldRow& b) {
                           return a.id >= b.id;
                         }) == rows.end();
  return ascending && std::all_of(rows.begin(), rows.end(), [](const FieldRow& row) {
           return output::InfoOf(row.field).type ==
                  (row.sort == FieldSort::kDate ? output::FieldType::Date : output::FieldType::Text);
         });
}

}  // namespace velmora::items
