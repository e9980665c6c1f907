// Journal entries, and sticky notes, which readpst leaves out. pffexport has no line for what is a journal's or a
// note's own.
#include "output/kinds/row.h"

namespace velmora::kinds {
namespace {

using enum output::Field;

// clang-format off
constexpr Row kJournal[] = {
  {Tag(0x0023),    OriginatorDeliveryReportRequested, "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0029),    ReadReceiptRequested,              "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x002B),    RecipientReassignmentProhibited,   "true",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0036),    Sensitivity,                       "2",                   kSame, "Sensitivity=Private",             kNotShown},
  {Tag(0x0037),    Subject,                           kOwnName,              kSame, "Subject",                         "SUMMARY:%"},
  {Tag(0x0042),    SentOnBehalfOfName,                kOwnName,              kSame, "Sent representing name",          kNotShown},
  {Tag(0x0064),    SentOnBehalfOfEmailType,           "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0065),    SentOnBehalfOfEmailAddress,        "on@behalf.example",   kSame, "Sent representing email address", kNotShown},
  {Tag(0x0070),    ConversationTopic,                 kOwnName,              kSame, "Conversation topic",              kNotShown},
  {Tag(0x0C1A),    SenderName,                        kOwnName,              kSame, "Sender name",                     kNotShown},
  {Tag(0x0C1E),    SenderEmailType,                   "SMTP",                kSame, kNotShown,                         kNotShown},
  {Tag(0x0C1F),    SenderEmailAddress,                "sender@sea.example",  kSame, "Sender email address",            kNotShown},
  {Tag(0x0E02),    BCC,                               kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E03),    CC,                                kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E04),    To,                                kOwnName,              kSame, "Recipients.txt/Display name",     kNotShown},
  {Tag(0x0E06),    ReceivedTime,                      "2021-02-03 10:11:12", kSame, "Delivery time",                   kNotShown},
  {Tag(0x1000),    Body,                              kOwnName,              kSame, "Message.txt/*",                   "DESCRIPTION:%"},
  {Tag(0x1090),    FlagStatus,                        "2",                   kSame, kNotShown,                         kNotShown},
  {kKeywords,      Categories,                        "Harbours",            kSame, kNotShown,                         kNotShown},
  {Common(0x8503), ReminderSet,                       "true",                kSame, "Is a reminder",                   kNotShown},
  {Common(0x8530), FlagRequest,                       kOwnName,              kSame, kNotShown,                         kNotShown},
  {Common(0x8539), Companies,                         "Fjord AS",            kSame, kNotShown,                         kNotShown},
  {Log(0x8700),    JournalType,                       kOwnName,              kSame, kNotShown,                         kNotShown},
  {Log(0x8706),    JournalStart,                      "2021-02-06 09:00:00", kSame, kNotShown,                         "DTSTART;VALUE=DATE-TIME:20210206T090000Z"},
  {Log(0x8707),    JournalDuration,                   "12",                  kSame, kNotShown,                         kNotShown},
  {Log(0x870E),    DocPrinted,                        "true",                kSame, kNotShown,                         kNotShown},
  {Log(0x870F),    DocSaved,                          "true",                kSame, kNotShown,                         kNotShown},
  {Log(0x8710),    DocRouted,                         "true",                kSame, kNotShown,                         kNotShown},
  {Log(0x8711),    DocPosted,                         "true",                kSame, kNotShown,                         kNotShown},
};

constexpr Row kNote[] = {
  {Tag(0x0002),    AlternateRecipientAllowed,         "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x0005),    AutoForwarded,                     "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x0023),    OriginatorDeliveryReportRequested, "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x0029),    ReadReceiptRequested,              "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x002B),    RecipientReassignmentProhibited,   "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x0036),    Sensitivity,                       "2",                   kSame, "Sensitivity=Private", kNotShown},
  {Tag(0x0037),    Subject,                           kOwnName,              kSame, "Subject",             kNotShown},
  {Tag(0x0070),    ConversationTopic,                 kOwnName,              kSame, "Conversation topic",  kNotShown},
  {Tag(0x0E01),    DeleteAfterSubmit,                 "true",                kSame, kNotShown,             kNotShown},
  {Tag(0x0E06),    ReceivedTime,                      "2021-02-03 10:11:12", kSame, "Delivery time",       kNotShown},
  {Tag(0x1000),    Body,                              kOwnName,              kSame, "Message.txt/*",       kNotShown},
  {Tag(0x1090),    FlagStatus,                        "2",                   kSame, kNotShown,             kNotShown},
  {kKeywords,      Categories,                        "Harbours",            kSame, kNotShown,             kNotShown},
  {Common(0x8503), ReminderSet,                       "true",                kSame, "Is a reminder",       kNotShown},
  {Note(0x8B00),   Color,                             "1",                   kSame, kNotShown,             kNotShown},
  {Note(0x8B02),   Width,                             "200",                 kSame, kNotShown,             kNotShown},
  {Note(0x8B03),   Height,                            "166",                 kSame, kNotShown,             kNotShown},
};
// clang-format on

}  // namespace

std::span<const Row> JournalRows() { return kJournal; }
std::span<const Row> NoteRows() { return kNote; }

}  // namespace velmora::kinds
