// The rows of the grid, as the tables of the kinds name them, and what they say about an item.
#pragma once

#include <QString>
#include <optional>

#include "store/operations.h"
#include "text/text.h"

namespace velmora::workflow {

/// How a value becomes text, and which values make no row at all.
enum class RowForm {
  Text,         ///< the text; none for an empty one
  Flag,         ///< "Yes"; none for a flag that is not set
  Number,       ///< decimal; none for 0
  Date,         ///< month/day/year; none for the date that stands for "no date"
  Time,         ///< hour:minute:second:millisecond; none for that date
  Sensitivity,  ///< a word; none for 0, as with the words below
  Importance,
  TaskStatus,
  NoteColour,  ///< a row where the colour is not 0, with a word for the importance
};

struct GridRow {
  text::TextView label;
  output::Field field;
  RowForm form;
};

constexpr output::FieldType FieldTypeOf(RowForm form) {
  switch (form) {
    case RowForm::Text:
      return output::FieldType::Text;
    case RowForm::Flag:
      return output::FieldType::Flag;
    case RowForm::Date:
    case RowForm::Time:
      return output::FieldType::Date;
    default:
      return output::FieldType::Number;
  }
}

/// The value of a row, or nothing where the item has no such row. A number beyond the words of its form gives
/// a row with an empty value. Raises what the read raises.
std::optional<QString> ValueOf(const output::RDOMail& item, const GridRow& row);

}  // namespace velmora::workflow
