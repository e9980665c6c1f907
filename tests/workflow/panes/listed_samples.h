// For each written-down row a value that makes it, and what the row says then.
#pragma once

#include <span>
#include <string>

#include "workflow/panes/fill_kinds.h"
#include "workflow/panes/listed_rows.h"
#include "workflow/panes/store_fixture.h"

namespace velmora::workflow {

struct KindCase {
  PaneMessage message;
  const char16_t* folderClass;
  const char16_t* messageClass;
  std::span<const ListedRow> listed;
};

inline constexpr KindCase kKindCases[] = {
    {kFillContactsMessage, u"IPF.Contact", u"IPM.Contact", kListedContactRows},
    {kFillTasksMessage, u"IPF.Task", u"IPM.Task", kListedTaskRows},
    {kFillCalendarMessage, u"IPF.Appointment", u"IPM.Appointment", kListedCalendarRows},
    {kFillJournalMessage, u"IPF.Journal", u"IPM.Activity", kListedJournalRows},
    {kFillNotesMessage, u"IPF.StickyNote", u"IPM.StickyNote", kListedNoteRows},
};

/// The field that an item of that class reads by an operation of that name.
output::Field FieldOf(std::string_view operation, text::TextView messageClass);

struct Sample {
  output::FieldValue value;
  std::string shown;
};
Sample SampleOf(const ListedRow& row);

/// One for each row of a kind.
FieldValues SamplesOf(const KindCase& kind);

}  // namespace velmora::workflow
