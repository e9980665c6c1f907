#include "workflow/panes/listed_samples.h"

#include "text/calendar.h"

namespace velmora::workflow {

using output::Field;

Field FieldOf(std::string_view operation, text::TextView messageClass) {
  for (const output::FieldInfo& info : output::kFields) {
    const bool answers =
        info.interface == output::ItemInterface::RDOMail || info.interface == output::TypedInterfaceOf(messageClass);
    if (answers && info.name == operation) return info.field;
  }
  ADD_FAILURE() << "no operation " << operation;
  return Field::Subject;
}

Sample SampleOf(const ListedRow& row) {
  if (row.form == "text")
    return {text::FromUtf8("Value of " + std::string(row.operation)), "Value of " + std::string(row.operation)};
  if (row.form == "flag") return {true, "Yes"};
  if (row.form == "number") return {std::int32_t{70}, "70"};
  if (row.form == "date") return {text::OleDateOf(40667 * text::kSecondsPerDay), "5/4/2011"};
  if (row.form == "time") return {text::OleDateOf(40667 * text::kSecondsPerDay + 3723), "1:2:3:0"};
  if (row.form == "sensitivity word") return {std::int32_t{2}, "Private"};
  if (row.form == "importance word") return {std::int32_t{2}, "High"};
  if (row.form == "status word") return {std::int32_t{2}, "Task Complete"};  // as the flag says too
  if (row.form == "note colour words") return {std::int32_t{4}, "Blue"};     // the item has no importance
  ADD_FAILURE() << "no form " << row.form;
  return {};
}

FieldValues SamplesOf(const KindCase& kind) {
  FieldValues fields;
  for (const ListedRow& row : kind.listed) {
    fields.emplace_back(FieldOf(row.operation, kind.messageClass), SampleOf(row).value);
  }
  return fields;
}

}  // namespace velmora::workflow
