#include "recovery/message_classes.h"

#include <algorithm>

namespace velmora::recovery {

using output::DefaultFolder;
using text::TextView;

namespace {

/// Where items of a kind lie; nothing for mail.
std::optional<DefaultFolder> DefaultFolderOf(ItemKind kind) {
  switch (kind) {
    case ItemKind::kContact:
      return DefaultFolder::kContacts;
    case ItemKind::kTask:
      return DefaultFolder::kTasks;
    case ItemKind::kAppointment:
    case ItemKind::kMeeting:
      return DefaultFolder::kCalendar;
    case ItemKind::kJournal:
      return DefaultFolder::kJournal;
    case ItemKind::kNote:
      return DefaultFolder::kNotes;
    case ItemKind::kMail:
      break;
  }
  return std::nullopt;
}

/// Classes that are placed in a special way and become no item of a special kind.
constexpr TextView kCalendarClasses[] = {u"IPM.Configuration.HomeTimeZone", u"IPM.Configuration.Calendar",
                                         u"IPM.Configuration.AvailabilityOptions", u"IPM.Configuration.WorkHours"};
constexpr TextView kClassesWithoutDefault[] = {u"IPM.ExtendedRule.Message", u"IPM.Configuration.RssRule",
                                               u"IPM.Microsoft.MigrationStatus", u"IPM.MessageManager",
                                               u"IPM.Rule.Message"};

/// Compared without their letter case, unlike all others.
constexpr TextView kMailClasses[] = {
    kMailMessageClass,
    kMailContainerClass,
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

}  // namespace

std::optional<SpecialPlacement> SpecialPlacementOf(TextView messageClass) {
  if (const auto kind = KindOfClass(messageClass)) return SpecialPlacement{DefaultFolderOf(*kind)};
  if (std::ranges::count(kCalendarClasses, messageClass) != 0) return SpecialPlacement{DefaultFolder::kCalendar};
  if (std::ranges::count(kClassesWithoutDefault, messageClass) != 0) return SpecialPlacement{};
  return std::nullopt;
}

ItemClass Classify(TextView messageClass) {
  if (const auto kind = KindOfClass(messageClass)) return {ClassVerdict::kItem, *kind};
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

}  // namespace velmora::recovery
