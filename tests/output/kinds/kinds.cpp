#include "output/kinds/row.h"

namespace velmora::kinds {

std::span<const Kind> Kinds() {
  // clang-format off
  static const Kind kKinds[] = {
      {"Mail",             u"IPM.Note",                     MailRows(),        "Message",          "OutlookHeaders.txt", "mbox"},
      {"Contact",          u"IPM.Contact",                  ContactRows(),     "Contact",          "Contact.txt",        "contacts"},
      {"DistributionList", u"IPM.DistList",                 ContactRows(),     "DistributionList", nullptr,              nullptr},
      {"Task",             u"IPM.Task",                     TaskRows(),        "Task",             "Task.txt",           nullptr},
      {"Appointment",      u"IPM.Appointment",              AppointmentRows(), "Appointment",      "Appointment.txt",    "calendar"},
      {"Meeting",          u"IPM.Schedule.Meeting.Request", MeetingRows(),     "Meeting",          "Meeting.txt",        "mbox"},
      {"Journal",          u"IPM.Activity",                 JournalRows(),     "Activity",         "Activity.txt",       "journal"},
      {"Note",             u"IPM.StickyNote",               NoteRows(),        "Note",             "Note.txt",           nullptr},
  };
  // clang-format on
  return kKinds;
}

}  // namespace velmora::kinds
