#include "recovery/message_classes.h"

#include <algorithm>

namespace velmora::recovery {

using output::DefaultFolder;
using text::TextView;

namespace {

/// Classes that are placed in a special way and become an item of a special kind.
struct SpecialClass {
  TextView name;
  ItemKind kind;
};
constexpr SpecialClass kSpecialClasses[] = {
    {u"IPF.Contact", ItemKind::kContact},
    {u"IPM.Contact", ItemKind::kContact},
    {u"IPF.DistList", ItemKind::kContact},
    {u"IPM.DistList", ItemKind::kContact},
    {u"IPF.Journal", ItemKind::kJournal},
    {u"IPM.Journal", ItemKind::kJournal},
    {u"IPF.Activity", ItemKind::kJournal},
    {u"IPM.Activity", ItemKind::kJournal},
    {u"IPM.Task", ItemKind::kTask},
    {u"IPF.Task", ItemKind::kTask},
    {u"IPM.TaskRequest.Decline", ItemKind::kTask},
    {u"IPF.TaskRequest.Decline", ItemKind::kTask},
    {u"IPM.TaskRequest.Update", ItemKind::kTask},
    {u"IPM.TaskRequest", ItemKind::kTask},
    {u"IPF.TaskRequest.Update", ItemKind::kTask},
    {u"IPF.TaskRequest", ItemKind::kTask},
    {u"IPM.StickyNote", ItemKind::kNote},
    {u"IPF.StickyNote", ItemKind::kNote},
    {u"IPF.Appointment", ItemKind::kAppointment},
    {u"IPM.Appointment", ItemKind::kAppointment},
    {u"IPM.Schedule.Meeting.Canceled", ItemKind::kMeeting},
    {u"IPM.Schedule.Meeting.Request", ItemKind::kMeeting},
    {u"IPM.Schedule.Meeting.Resp.Neg", ItemKind::kMeeting},
    {u"IPM.Schedule.Meeting.Resp.Pos", ItemKind::kMeeting},
    {u"IPM.Schedule.Meeting.Resp.Tent", ItemKind::kMeeting},
    {u"IPF.Schedule.Meeting.Canceled", ItemKind::kMeeting},
    {u"IPF.Schedule.Meeting.Request", ItemKind::kMeeting},
    {u"IPF.Schedule.Meeting.Resp.Neg", ItemKind::kMeeting},
    {u"IPF.Schedule.Meeting.Resp.Pos", ItemKind::kMeeting},
    {u"IPF.Schedule.Meeting.Resp.Tent", ItemKind::kMeeting},
};

struct KindRow {
  ItemKind kind;
  output::ItemInterface interface;
  std::optional<DefaultFolder> defaultFolder;
};
constexpr KindRow kKinds[kItemKinds] = {
    {ItemKind::kMail, output::ItemInterface::RDOMail, std::nullopt},
    {ItemKind::kContact, output::ItemInterface::RDOContactItem, DefaultFolder::kContacts},
    {ItemKind::kTask, output::ItemInterface::RDOTaskItem, DefaultFolder::kTasks},
    {ItemKind::kAppointment, output::ItemInterface::RDOAppointmentItem, DefaultFolder::kCalendar},
    {ItemKind::kMeeting, output::ItemInterface::RDOAppointmentItem, DefaultFolder::kCalendar},
    {ItemKind::kJournal, output::ItemInterface::RDOJournalItem, DefaultFolder::kJournal},
    {ItemKind::kNote, output::ItemInterface::RDONoteItem, DefaultFolder::kNotes},
};

constexpr const KindRow& RowOf(ItemKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

/// Classes that are placed in a special way and become no item of a special kind.
constexpr TextView kCalendarClasses[] = {u"IPM.Configuration.HomeTimeZone", u"IPM.Configuration.Calendar",
                                         u"IPM.Configuration.AvailabilityOptions", u"IPM.Configuration.WorkHours"};
constexpr TextView kClassesWithoutDefault[] = {u"IPM.ExtendedRule.Message", u"IPM.Configuration.RssRule",
                                               u"IPM.Microsoft.MigrationStatus", u"IPM.MessageManager",
                                               u"IPM.Rule.Message"};

/// Compared without their letter case, unlike all others.
constexpr TextView kMailClasses[] = {
    u"IPM.Note",
    u"IPF.Note",
    u"NOTE",
    u"Report.IPM.Note.IPNRN",
    u"Report.IPM.Note.IPNNRN",
    u"Report.IPF.Note.IPNRN",
    u"Report.IPF.Note.IPNNRN",
    u"IPM.Report",
    u"IPF.Report",
    u"REPORT.IPM.Note.NDR",
    u"REPORT.IPF.Note.NDR",
    u"IPM.NOTE.Omtool.NDR",
    u"REPORT.IPM.Note.DR",
    u"REPORT.IPF.Note.DR",
    u"IPM.NOTE.Omtool.DR",
    u"IPF.NOTE.Omtool.DR",
    u"IPM.MessageManager",
};

const SpecialClass* FindSpecial(TextView messageClass) {
  const auto found = std::ranges::find(kSpecialClasses, messageClass, &SpecialClass::name);
  return found == std::end(kSpecialClasses) ? nullptr : found;
}

}  // namespace

std::optional<SpecialPlacement> SpecialPlacementOf(TextView messageClass) {
  if (const SpecialClass* special = FindSpecial(messageClass)) {
    return SpecialPlacement{RowOf(special->kind).defaultFolder};
  }
  if (std::ranges::count(kCalendarClasses, messageClass) != 0) return SpecialPlacement{DefaultFolder::kCalendar};
  if (std::ranges::count(kClassesWithoutDefault, messageClass) != 0) return SpecialPlacement{};
  return std::nullopt;
}

ItemClass Classify(TextView messageClass) {
  if (const SpecialClass* special = FindSpecial(messageClass)) return {ClassVerdict::kItem, special->kind};
  for (const TextView mailClass : kMailClasses) {
    if (text::EqualIgnoringCase(mailClass, messageClass)) return {ClassVerdict::kItem, ItemKind::kMail};
  }
  if (messageClass.size() < 3) return {ClassVerdict::kNoClass, ItemKind::kMail};
  // One character in its place is enough to take a text for a class that is none of the above
  // (docs/fidelity.md#refused-class).
  const char16_t third = messageClass[2];
  if (messageClass[0] == u'I' || messageClass[1] == u'P' || third == u'M' || third == u'F' || third == u'C') {
    return {ClassVerdict::kRefused, ItemKind::kMail};
  }
  return {ClassVerdict::kDamaged, ItemKind::kMail};
}

bool IsDistributionList(TextView messageClass) {
  return messageClass == u"IPM.DistList" || messageClass == u"IPF.DistList";
}

output::ItemInterface InterfaceOf(ItemKind kind) { return RowOf(kind).interface; }

}  // namespace velmora::recovery
