// Tasks. readpst leaves them out.
#include "output/kinds/row.h"

namespace velmora::kinds {
namespace {

using enum output::Field;

// clang-format off
constexpr Row kTask[] = {
  {Tag(0x0002),    AlternateRecipientAllowed,         "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0005),    AutoForwarded,                     "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0017),    Importance,                        "2",                   kSame,        "Importance=High",                 kNotShown},
  {Tag(0x0023),    OriginatorDeliveryReportRequested, "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0026),    SchedulePlusPriority,              kOwnName,              Task(0x812F), kNotShown,                         kNotShown},
  {Tag(0x0029),    ReadReceiptRequested,              "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x002B),    RecipientReassignmentProhibited,   "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0036),    Sensitivity,                       "2",                   kSame,        "Sensitivity=Private",             kNotShown},
  {Tag(0x0037),    Subject,                           kOwnName,              kSame,        "Subject",                         kNotShown},
  {Tag(0x0042),    SentOnBehalfOfName,                kOwnName,              kSame,        "Sent representing name",          kNotShown},
  {Tag(0x0064),    SentOnBehalfOfEmailType,           "SMTP",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0065),    SentOnBehalfOfEmailAddress,        "on@behalf.example",   kSame,        "Sent representing email address", kNotShown},
  {Tag(0x0070),    ConversationTopic,                 kOwnName,              kSame,        "Conversation topic",              kNotShown},
  {Tag(0x0C1A),    SenderName,                        kOwnName,              kSame,        "Sender name",                     kNotShown},
  {Tag(0x0C1E),    SenderEmailType,                   "SMTP",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0C1F),    SenderEmailAddress,                "sender@sea.example",  kSame,        "Sender email address",            kNotShown},
  {Tag(0x0E01),    DeleteAfterSubmit,                 "true",                kSame,        kNotShown,                         kNotShown},
  {Tag(0x0E02),    BCC,                               kOwnName,              kSame,        "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E03),    CC,                                kOwnName,              kSame,        "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E04),    To,                                kOwnName,              kSame,        "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E06),    ReceivedTime,                      "2021-02-03 10:11:12", kSame,        "Delivery time",                   kNotShown},
  {Tag(0x1000),    Body,                              kOwnName,              kSame,        "Message.txt/*",                   kNotShown},
  {Tag(0x1090),    FlagStatus,                        "2",                   kSame,        kNotShown,                         kNotShown},
  {kKeywords,      Categories,                        "Harbours",            kSame,        kNotShown,                         kNotShown},
  {Task(0x8101),   Status,                            "2",                   kSame,        "Status",                          kNotShown},
  {Task(0x8104),   StartDate,                         "2021-03-01 00:00:00", kSame,        "Start date",                      kNotShown},
  {Task(0x8105),   DueDate,                           "2021-03-31 00:00:00", kSame,        "Due date",                        kNotShown},
  {Task(0x8108),   TaskAccepted,                      "true",                kSame,        kNotShown,                         kNotShown},
  {Task(0x810F),   DateCompleted,                     "2021-03-30 00:00:00", kSame,        kNotShown,                         kNotShown},
  {Task(0x811C),   Complete,                          "true",                kSame,        "Is complete",                     kNotShown},
  {Task(0x811F),   Owner,                             kOwnName,              kSame,        kNotShown,                         kNotShown},
  {Common(0x8503), ReminderSet,                       "true",                kSame,        "Is a reminder",                   kNotShown},
  {Common(0x850E), NoAging,                           "true",                kSame,        kNotShown,                         kNotShown},
  {Common(0x851C), ReminderOverrideDefault,           "true",                kSame,        kNotShown,                         kNotShown},
  {Common(0x8530), FlagRequest,                       kOwnName,              kSame,        kNotShown,                         kNotShown},
  {Common(0x8534), Mileage,                           kOwnName,              kSame,        kNotShown,                         kNotShown},
  {Common(0x8535), BillingInformation,                kOwnName,              kSame,        kNotShown,                         kNotShown},
  {Common(0x8539), Companies,                         "Fjord AS",            kSame,        kNotShown,                         kNotShown},
};
// clang-format on

}  // namespace

std::span<const Row> TaskRows() { return kTask; }

}  // namespace velmora::kinds
