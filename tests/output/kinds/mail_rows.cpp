// Mail. Its bodies and what an answer leaves have tests of their own.
#include "output/kinds/row.h"

namespace velmora::kinds {
namespace {

using enum output::Field;

// clang-format off
constexpr Row kMail[] = {
  {Tag(0x0017),    Importance,                        "2",                   kSame,       "Importance=High",             kNotShown},
  {Tag(0x0023),    OriginatorDeliveryReportRequested, "true",                kSame,       kNotShown,                     kNotShown},
  {Tag(0x0029),    ReadReceiptRequested,              "true",                kSame,       kNotShown,                     kNotShown},
  {Tag(0x0036),    Sensitivity,                       "2",                   kSame,       "Sensitivity=Private",         kNotShown},
  {Tag(0x0037),    Subject,                           "Harbour report",      kSame,       "Subject",                     "Subject: %"},
  {Tag(0x0039),    SentOn,                            "2021-02-03 10:10:10", kSame,       "Client submit time",          "Date: Wed, 03 Feb 2021 10:10:10 +0000"},
  {Tag(0x0042),    SentOnBehalfOfName,                "Ann Lee",             kSame,       "Sent representing name",      "From: \"%\" <MAILER-DAEMON>"},
  {Tag(0x0042),    SenderName,                        "Ann Lee",             Tag(0x0C1A), "Sender name",                 "From: \"%\" <MAILER-DAEMON>"},
  {Tag(0x0E01),    DeleteAfterSubmit,                 "true",                kSame,       kNotShown,                     kNotShown},
  {Tag(0x0E03),    CC,                                "Carol",               kSame,       "Recipients.txt/Display name", "Cc: %"},
  {Tag(0x0E04),    To,                                "Bob",                 kSame,       "Recipients.txt/Display name", "To: %"},
  {Tag(0x0E06),    ReceivedTime,                      "2021-02-03 10:11:12", kSame,       "Delivery time",               kNotShown},
  {Tag(0x0E07),    UnRead,                            "false",               kBits,       "Flags=0x00000001 (Read)",     "Status: RO"},
  {Tag(0x0E07),    Sent,                              "true",                kBits,       "Flags=0x00000001 (Read)",     kNotShown},
  {Tag(0x1000),    Body,                              kOwnName,              kSame,       "Message.txt/*",               "%"},
  {Tag(0x1095),    FlagIcon,                          "6",                   kSame,       kNotShown,                     kNotShown},
  {kKeywords,      Categories,                        "Harbours",            kSame,       kNotShown,                     kNotShown},
  {Task(0x8101),   FlagStatus,                        "2",                   Tag(0x1090), kNotShown,                     kNotShown},
  {Task(0x8105),   FlagDueBy,                         "2021-03-31 00:00:00", Tag(0x0030), kNotShown,                     kNotShown},
  {Common(0x8503), ReminderSet,                       "true",                kSame,       "Is a reminder",               kNotShown},
};
// clang-format on

}  // namespace

std::span<const Row> MailRows() { return kMail; }

}  // namespace velmora::kinds
