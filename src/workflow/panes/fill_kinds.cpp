#include "workflow/panes/fill_kinds.h"

#include "workflow/panes/calendar_rows.h"
#include "workflow/panes/contact_rows.h"
#include "workflow/panes/journal_rows.h"
#include "workflow/panes/note_rows.h"
#include "workflow/panes/task_rows.h"

namespace velmora::workflow {
namespace {

using output::Field;
using output::ItemInterface;

constexpr FillKind kKinds[] = {
    {kFillContactsMessage, u"Updating Contacts", ItemInterface::RDOContactItem, Field::FullName, kContactRows},
    {kFillTasksMessage, u"Updating Tasks", ItemInterface::RDOTaskItem, Field::Subject, kTaskRows},
    {kFillCalendarMessage, u"Updating Calendars", ItemInterface::RDOAppointmentItem, Field::Subject, kCalendarRows},
    {kFillNotesMessage, u"Updating Notes", ItemInterface::RDONoteItem, Field::Subject, kNoteRows},
    {kFillJournalMessage, u"Updating Journals", ItemInterface::RDOJournalItem, Field::Subject, kJournalRows},
};

/// An item of the kind answers to every field that is read of it.
constexpr bool CanBeRead(const FillKind& kind) {
  const auto answers = [&kind](Field field) {
    const ItemInterface asked = output::InfoOf(field).interface;
    return asked == ItemInterface::RDOMail || asked == kind.interface;
  };
  return answers(kind.caption) &&
         std::all_of(kind.rows.begin(), kind.rows.end(), [&](const GridRow& row) { return answers(row.field); });
}
static_assert(std::all_of(std::begin(kKinds), std::end(kKinds), CanBeRead));

struct ClassRow {
  text::TextView containerClass;
  PaneMessage message;
};

constexpr ClassRow kClasses[] = {
    {u"IPM.Contact", kFillContactsMessage},     {u"IPF.Contact", kFillContactsMessage},
    {u"IPM.Task", kFillTasksMessage},           {u"IPF.Task", kFillTasksMessage},
    {u"IPM.Appointment", kFillCalendarMessage}, {u"IPF.Appointment", kFillCalendarMessage},
    {u"IPM.StickyNote", kFillNotesMessage},     {u"IPF.StickyNote", kFillNotesMessage},
    {u"IPM.Journal", kFillJournalMessage},      {u"IPF.Journal", kFillJournalMessage},
    {u"IPM.Activity", kFillJournalMessage},     {u"IPF.Activity", kFillJournalMessage},
};

}  // namespace

std::span<const FillKind> FillKinds() { return kKinds; }

const FillKind* FillKindOf(std::uint32_t message) {
  const auto* const found = std::ranges::find(kKinds, message, &FillKind::message);
  return found == std::end(kKinds) ? nullptr : found;
}

const FillKind* FillKindOfClass(text::TextView containerClass) {
  const auto* const found = std::ranges::find(kClasses, containerClass, &ClassRow::containerClass);
  return found == std::end(kClasses) ? nullptr : FillKindOf(found->message);
}

}  // namespace velmora::workflow
