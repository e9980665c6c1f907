// Appointments and meeting messages.
#include "output/kinds/row.h"

namespace velmora::kinds {
namespace {

using enum output::Field;

// clang-format off
constexpr Row kAppointment[] = {
  {Tag(0x0002),      AlternateRecipientAllowed,         "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0005),      AutoForwarded,                     "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0017),      Importance,                        "2",                   kSame, "Importance=High",                 kNotShown},
  {Tag(0x0023),      OriginatorDeliveryReportRequested, "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0029),      ReadReceiptRequested,              "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x002B),      RecipientReassignmentProhibited,   "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0036),      Sensitivity,                       "2",                   kSame, "Sensitivity=Private",             kNotShown},
  {Tag(0x0037),      Subject,                           kOwnName,              kSame, "Subject",                         "SUMMARY:%"},
  {Tag(0x0042),      SentOnBehalfOfName,                kOwnName,              kSame, "Sent representing name",          kNotShown},
  {Tag(0x0063),      ResponseRequested,                 "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0064),      SentOnBehalfOfEmailType,           "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0065),      SentOnBehalfOfEmailAddress,        "on@behalf.example",   kSame, "Sent representing email address", kNotShown},
  {Tag(0x0070),      ConversationTopic,                 kOwnName,              kSame, "Conversation topic",              kNotShown},
  {Tag(0x0C1A),      SenderName,                        kOwnName,              kSame, "Sender name",                     kNotShown},
  {Tag(0x0C1E),      SenderEmailType,                   "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0C1F),      SenderEmailAddress,                "sender@sea.example",  kSame, "Sender email address",            kNotShown},
  {Tag(0x0E01),      DeleteAfterSubmit,                 "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0E02),      BCC,                               kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E03),      CC,                                kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E04),      To,                                kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E06),      ReceivedTime,                      "2021-02-03 10:11:12", kSame, "Delivery time",                   kNotShown},
  {Tag(0x1000),      Body,                              kOwnName,              kSame, kNotShown,                         "DESCRIPTION:%"},
  {Tag(0x1090),      FlagStatus,                        "2",                   kSame, kNotShown,                         kNotShown},
  {kKeywords,        Categories,                        "Harbours",            kSame, kNotShown,                         kNotShown},
  {Calendar(0x8205), BusyStatus,                        "3",                   kSame, "Busy status",                     kNotShown},
  {Calendar(0x8208), Location,                          kOwnName,              kSame, "Location",                        "LOCATION:%"},
  {Calendar(0x820D), AppointmentStart,                  "2021-05-03 12:00:00", kSame, "Start time",                      "DTSTART;VALUE=DATE-TIME:20210503T120000Z"},
  {Calendar(0x820E), End,                               "2021-05-03 12:45:00", kSame, "End time",                        "DTEND;VALUE=DATE-TIME:20210503T124500Z"},
  {Calendar(0x8213), AppointmentDuration,               "45",                  kSame, "Duration=45 minutes",             kNotShown},
  {Calendar(0x8215), AllDayEvent,                       "true",                kSame, kNotShown,                         kNotShown},
  {Common(0x8502),   ReminderTime,                      "2021-05-03 12:00:01", kSame, "Reminder time",                   kNotShown},
  {Common(0x8503),   ReminderSet,                       "true",                kSame, "Is a reminder",                   kNotShown},
  {Common(0x850E),   NoAging,                           "true",                kSame, kNotShown,                         kNotShown},
  {Common(0x851C),   ReminderOverrideDefault,           "true",                kSame, kNotShown,                         kNotShown},
  {Common(0x8530),   FlagRequest,                       kOwnName,              kSame, kNotShown,                         kNotShown},
  {Common(0x8539),   Companies,                         "Fjord AS",            kSame, kNotShown,                         kNotShown},
  {Common(0x8560),   ReminderSignalTime,                "2021-05-03 11:45:00", kSame, kNotShown,                         "TRIGGER:-PT15M"},
};

constexpr Row kMeeting[] = {
  {Tag(0x0002),    AlternateRecipientAllowed,         "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0005),    AutoForwarded,                     "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0017),    Importance,                        "2",                   kSame, "Importance=High",                 kNotShown},
  {Tag(0x0023),    OriginatorDeliveryReportRequested, "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0029),    ReadReceiptRequested,              "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x002B),    RecipientReassignmentProhibited,   "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0036),    Sensitivity,                       "2",                   kSame, "Sensitivity=Private",             kNotShown},
  {Tag(0x0037),    Subject,                           "Harbour meeting",     kSame, "Subject",                         "Subject: %"},
  {Tag(0x0042),    SentOnBehalfOfName,                "Ann Lee",             kSame, "Sent representing name",          "From: \"%\" <on@behalf.example>"},
  {Tag(0x0064),    SentOnBehalfOfEmailType,           "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0065),    SentOnBehalfOfEmailAddress,        "on@behalf.example",   kSame, "Sent representing email address", "From: \"Ann Lee\" <%>"},
  {Tag(0x0070),    ConversationTopic,                 kOwnName,              kSame, "Conversation topic",              kNotShown},
  {Tag(0x0C1A),    SenderName,                        kOwnName,              kSame, "Sender name",                     kNotShown},
  {Tag(0x0C1E),    SenderEmailType,                   "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0C1F),    SenderEmailAddress,                "sender@sea.example",  kSame, "Sender email address",            kNotShown},
  {Tag(0x0E01),    DeleteAfterSubmit,                 "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0E02),    BCC,                               kOwnName,              kSame, kNotShown,                         "X-libpst-forensic-bcc: %"},
  {Tag(0x0E03),    CC,                                "Carol",               kSame, kNotShown,                         "Cc: %"},
  {Tag(0x0E04),    To,                                "Bob",                 kSame, kNotShown,                         "To: %"},
  {Tag(0x0E06),    ReceivedTime,                      "2021-02-03 10:11:12", kSame, "Delivery time",                   kNotShown},
  {Tag(0x1000),    Body,                              kOwnName,              kSame, "Message.txt/*",                   "DESCRIPTION:%"},
  {Tag(0x1090),    FlagStatus,                        "2",                   kSame, kNotShown,                         kNotShown},
  {kKeywords,      Categories,                        "Harbours",            kSame, kNotShown,                         kNotShown},
  {Common(0x8502), ReminderTime,                      "2021-05-03 12:00:01", kSame, "Reminder time",                   kNotShown},
  {Common(0x8503), ReminderSet,                       "true",                kSame, "Is a reminder",                   kNotShown},
  {Common(0x850E), NoAging,                           "true",                kSame, kNotShown,                         kNotShown},
  {Common(0x851C), ReminderOverrideDefault,           "true",                kSame, kNotShown,                         kNotShown},
  {Common(0x8530), FlagRequest,                       kOwnName,              kSame, kNotShown,                         kNotShown},
  {Common(0x8539), Companies,                         "Fjord AS",            kSame, kNotShown,                         kNotShown},
};
// clang-format on

}  // namespace

std::span<const Row> AppointmentRows() { return kAppointment; }
std::span<const Row> MeetingRows() { return kMeeting; }

}  // namespace velmora::kinds
