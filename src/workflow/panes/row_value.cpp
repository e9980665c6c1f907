#include "workflow/panes/row_value.h"

#include <cmath>
#include <span>

#include "workflow/qt_text.h"

namespace velmora::workflow {
namespace {

/// 1 January 4501, which stands for "no date".
constexpr output::OleDate kNoDate{949998.0};

constexpr text::TextView kSensitivityWords[] = {u"Normal", u"Personal", u"Private", u"Confidential"};
constexpr text::TextView kImportanceWords[] = {u"Low", u"Normal", u"High"};
constexpr text::TextView kStatusWords[] = {u"Task Not Started", u"Task In Progress", u"Task Complete", u"Task Waiting",
                                           u"Task Deferred"};
constexpr text::TextView kColourWords[] = {u"Blue", u"Green", u"Pink", u"Yellow", u"White"};

std::int32_t NumberOf(const output::RDOMail& item, output::Field field) {
  return std::get<std::int32_t>(item.Get(field).value);
}

QString Word(std::int32_t number, std::span<const text::TextView> words) {
  const bool known = number >= 0 && static_cast<std::size_t>(number) < words.size();
  return known ? ToQt(words[static_cast<std::size_t>(number)]) : QStringLiteral("");
}

std::optional<QString> DateValue(const output::FieldRead& read, RowForm form) {
  const output::OleDate date = std::get<output::OleDate>(read.value);
  // As a date the whole of that day stands for none, as a time its first moment alone.
  const bool isNone = form == RowForm::Date ? std::floor(date.days) == kNoDate.days : date == kNoDate;
  if (!read.written || isNone) return std::nullopt;
  const text::DateParts parts = PartsOf(date);
  if (form == RowForm::Date) return QString::asprintf("%d/%d/%d", parts.month, parts.day, parts.year);
  const int millisecond = 0;  // dates hold whole seconds
  return QString::asprintf("%d:%d:%d:%d", parts.hour, parts.minute, parts.second, millisecond);
}

std::optional<QString> NumberValue(const output::RDOMail& item, const GridRow& row) {
  const std::int32_t number = NumberOf(item, row.field);
  if (number == 0) return std::nullopt;
  switch (row.form) {
    case RowForm::Sensitivity:
      return Word(number, kSensitivityWords);
    case RowForm::Importance:
      return Word(number, kImportanceWords);
    case RowForm::TaskStatus:
      return Word(number, kStatusWords);
    case RowForm::NoteColour:
      return Word(NumberOf(item, output::Field::Importance), kColourWords);
    default:
      return QString::number(number);
  }
}

}  // namespace

std::optional<QString> ValueOf(const output::RDOMail& item, const GridRow& row) {
  switch (FieldTypeOf(row.form)) {
    case output::FieldType::Text: {
      const output::FieldRead read = item.Get(row.field);
      if (read.AsText().empty()) return std::nullopt;
      return ToQt(read.AsText());
    }
    case output::FieldType::Flag:
      if (!std::get<bool>(item.Get(row.field).value)) return std::nullopt;
      return QStringLiteral("Yes");
    case output::FieldType::Date:
      return DateValue(item.Get(row.field), row.form);
    default:
      return NumberValue(item, row);
  }
}

}  // namespace velmora::workflow
