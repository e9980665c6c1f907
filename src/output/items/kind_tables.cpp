// The tables of the six kinds that are no mail, and the rows that several of them share.
#include "output/items/kind_tables.h"

#include <algorithm>

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

/// Is the field of the type that such a record carries?
constexpr bool Fits(PropType type, output::Field field) {
  switch (output::InfoOf(field).type) {
    case output::FieldType::Flag:
      return type == PropType::kBoolean;
    case output::FieldType::Number:
      return type == PropType::kInteger32;
    case output::FieldType::Number16:
      return type == PropType::kInteger16;
    default:
      return false;
  }
}

constexpr bool FitsField(const FieldRow& row) {
  const auto type = row.sort == FieldSort::kDate ? output::FieldType::Date : output::FieldType::Text;
  return output::InfoOf(row.field).type == type;
}

struct CommonFlag {
  FlagRow flag;
  bool kinds[recovery::kItemKinds - 1];
};

struct CommonField {
  FieldRow field;
  bool kinds[recovery::kItemKinds - 1];
};

constexpr bool x = true;
constexpr bool o = false;

// Records in order of their ids bring 0x0002, 0x0005 and 0x0017 before the class record, when there is no item
// yet; these rows serve the messages whose records are out of order.

// clang-format off
constexpr CommonFlag kCommonFlags[] = {
  //                                                           contact task appointment meeting journal note
  {{kBoolean,   0x0002, AlternateRecipientAllowed},           {x,      x,   x,          x,      o,      x}},
  {{kBoolean,   0x0005, AutoForwarded},                       {x,      x,   x,          x,      o,      x}},
  {{kBoolean,   0x0023, OriginatorDeliveryReportRequested},   {x,      x,   x,          x,      x,      x}},
  {{kBoolean,   0x0029, ReadReceiptRequested},                {x,      x,   x,          x,      x,      x}},
  {{kBoolean,   0x002B, RecipientReassignmentProhibited},     {x,      x,   x,          x,      x,      x}},
  {{kBoolean,   0x0E01, DeleteAfterSubmit},                   {x,      x,   x,          x,      o,      x}},
  {{kBoolean,   0x8503, ReminderSet},                         {o,      x,   x,          x,      x,      x}},
  {{kBoolean,   0x850E, NoAging},                             {o,      x,   x,          x,      o,      o}},
  {{kBoolean,   0x851C, ReminderOverrideDefault},             {o,      x,   x,          x,      o,      o}},
  {{kInteger32, 0x0017, Importance},                          {x,      x,   x,          x,      o,      o}},
  {{kInteger32, 0x0036, Sensitivity},                         {x,      x,   x,          x,      x,      x}},
  {{kInteger32, 0x1090, FlagStatus},                          {x,      x,   x,          x,      x,      x}},
};

constexpr CommonField kCommonFields[] = {
  //                                               contact task appointment meeting journal note
  {{0x0037, Subject,                    kText},    {x,      x,   x,          x,      x,      x}},
  {{0x0042, SentOnBehalfOfName,         kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0064, SentOnBehalfOfEmailType,    kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0065, SentOnBehalfOfEmailAddress, kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0070, ConversationTopic,          kText},    {x,      x,   x,          x,      x,      x}},
  {{0x0C1A, SenderName,                 kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0C1E, SenderEmailType,            kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0C1F, SenderEmailAddress,         kText},    {x,      x,   x,          x,      x,      o}},
  {{0x0E02, BCC,                        kText},    {o,      x,   x,          x,      x,      o}},
  {{0x0E03, CC,                         kText},    {o,      x,   x,          x,      x,      o}},
  {{0x0E04, To,                         kText},    {o,      x,   x,          x,      x,      o}},
  {{0x0E06, ReceivedTime,               kDate},    {x,      x,   x,          x,      x,      x}},
  {{0x1000, Body,                       kText},    {x,      x,   x,          x,      x,      x}},
  {{0x8012, Categories,                 kText},    {x,      x,   x,          x,      x,      x}},
  {{0x8502, ReminderTime,               kDate},    {o,      o,   x,          x,      o,      o}},
  {{0x8530, FlagRequest,                kText},    {o,      x,   x,          x,      x,      o}},
  {{0x8534, Mileage,                    kText},    {x,      x,   o,          o,      o,      o}},
  {{0x8535, BillingInformation,         kText},    {x,      x,   o,          o,      o,      o}},
  {{0x8539, Companies,                  kText},    {o,      x,   x,          x,      x,      o}},
};

// Contacts, and distribution lists, which have no handling of their own: their members have no row.
constexpr FlagRow kContactFlags[] = {
  {kInteger16, 0x3A4D, Gender},
};

constexpr FieldRow kContactFields[] = {
  {0x3001, FullName,                     kText},
  {0x3A00, Account,                      kText},
  {0x3A02, CallbackTelephoneNumber,      kText},
  {0x3A05, Suffix,                       kText},
  {0x3A06, FirstName,                    kText},
  {0x3A07, GovernmentIDNumber,           kText},
  {0x3A08, BusinessTelephoneNumber,      kText},
  {0x3A09, HomeTelephoneNumber,          kText},
  {0x3A0A, Initials,                     kText},
  {0x3A0C, Language,                     kText},
  {0x3A0D, OfficeLocation,               kText},
  {0x3A10, OrganizationalIDNumber,       kText},
  {0x3A11, LastName,                     kText},
  {0x3A15, MailingAddress,               kText},
  {0x3A16, CompanyName,                  kText},
  {0x3A17, JobTitle,                     kText},
  {0x3A18, Department,                   kText},
  {0x3A19, OfficeLocation,               kText},  // has the last word over 0x3A0D
  {0x3A1A, PrimaryTelephoneNumber,       kText},
  {0x3A1B, Business2TelephoneNumber,     kText},
  {0x3A1C, MobileTelephoneNumber,        kText},
  {0x3A1D, RadioTelephoneNumber,         kText},
  {0x3A1E, CarTelephoneNumber,           kText},
  {0x3A1F, OtherTelephoneNumber,         kText},
  {0x3A21, PagerNumber,                  kText},
  {0x3A23, OtherFaxNumber,               kText},
  {0x3A24, BusinessFaxNumber,            kText},
  {0x3A25, HomeFaxNumber,                kText},
  {0x3A26, BusinessAddressCountry,       kText},
  {0x3A27, BusinessAddressCity,          kText},
  {0x3A28, BusinessAddressState,         kText},
  {0x3A29, BusinessAddressStreet,        kText},
  {0x3A2A, BusinessAddressPostalCode,    kText},
  {0x3A2B, BusinessAddressPostOfficeBox, kText},
  {0x3A2C, TelexNumber,                  kText},
  {0x3A2D, ISDNNumber,                   kText},
  {0x3A2E, AssistantTelephoneNumber,     kText},
  {0x3A2F, Home2TelephoneNumber,         kText},
  {0x3A30, AssistantName,                kText},
  {0x3A41, Anniversary,                  kDate},
  {0x3A42, Birthday,                     kDate},
  {0x3A43, Hobby,                        kText},
  {0x3A44, MiddleName,                   kText},
  {0x3A45, Title,                        kText},
  {0x3A46, Profession,                   kText},
  {0x3A47, ReferredBy,                   kText},
  {0x3A48, Spouse,                       kText},
  {0x3A49, ComputerNetworkName,          kText},
  {0x3A4A, CustomerID,                   kText},
  {0x3A4B, TTYTDDTelephoneNumber,        kText},
  {0x3A4C, FTPSite,                      kText},
  {0x3A4E, ManagerName,                  kText},
  {0x3A4F, NickName,                     kText},
  {0x3A50, PersonalHomePage,             kText},
  {0x3A51, BusinessHomePage,             kText},
  {0x3A57, CompanyMainTelephoneNumber,   kText},
  {0x3A58, Children,                     kText},
  {0x3A59, HomeAddressCity,              kText},
  {0x3A5A, HomeAddressCountry,           kText},
  {0x3A5B, HomeAddressPostalCode,        kText},
  {0x3A5C, HomeAddressState,             kText},
  {0x3A5D, HomeAddressStreet,            kText},
  {0x3A5E, HomeAddressPostOfficeBox,     kText},
  {0x3A5F, OtherAddressCity,             kText},
  {0x3A60, OtherAddressCountry,          kText},
  {0x3A61, OtherAddressPostalCode,       kText},
  {0x3A62, OtherAddressState,            kText},
  {0x3A63, OtherAddressStreet,           kText},
  {0x3A64, OtherAddressPostOfficeBox,    kText},
  {0x6619, Body,                         kOstText},
  {0x6849, InternetFreeBusyAddress,      kText},
  {0x801A, HomeAddress,                  kText},
  {0x801B, BusinessAddress,              kText},
  {0x801C, OtherAddress,                 kText},
  {0x8021, Email1DisplayName,            kText},
  {0x8022, Email1Address,                kText},
  {0x802C, YomiFirstName,                kText},
  {0x802D, YomiLastName,                 kText},
  {0x802E, YomiCompanyName,              kText},
  {0x8043, Email1Address,                kText},
  {0x804F, User1,                        kText},
  {0x8050, User2,                        kText},
  {0x8051, User3,                        kText},
  {0x8052, User4,                        kText},
  {0x8062, IMAddress,                    kText},
  {0x8063, Email1Address,                kText},
  {0x8064, Email1AddressType,            kText},
  {0x8080, Email1DisplayName,            kText},
  {0x8082, Email1AddressType,            kText},
  {0x8083, Email1Address,                kText},
  {0x8090, Email2DisplayName,            kText},
  {0x8092, Email2AddressType,            kText},
  {0x8093, Email2Address,                kText},
  {0x80A0, Email3DisplayName,            kText},
  {0x80A2, Email3AddressType,            kText},
  {0x80A3, Email3Address,                kText},
};

// Tasks and task requests.
constexpr FlagRow kTaskFlags[] = {
  {kBoolean,   0x811C, Complete},
  {kBoolean,   0x8108, TaskAccepted},
  {kInteger32, 0x8101, Status},
};

constexpr FieldRow kTaskFields[] = {
  {0x0026, SchedulePlusPriority,       kText},
  {0x8104, StartDate,                  kDate},
  {0x8105, DueDate,                    kDate},
  {0x810F, DateCompleted,              kDate},
  {0x811F, Owner,                      kText},
};

// Appointments. Recurrence and time zone have no row.
constexpr FlagRow kAppointmentFlags[] = {
  {kBoolean,   0x0063, ResponseRequested},
  {kBoolean,   0x8215, AllDayEvent},
  {kInteger32, 0x8205, BusyStatus},
  {kInteger32, 0x8213, AppointmentDuration},
};

constexpr FieldRow kAppointmentFields[] = {
  {0x8208, Location,                   kText},
  {0x820D, AppointmentStart,           kDate},
  {0x820E, End,                        kDate},
  {0x8560, ReminderSignalTime,         kDate},
};

// Journal entries. The end time has no row.
constexpr FlagRow kJournalFlags[] = {
  {kBoolean,   0x8711, DocPosted},
  {kBoolean,   0x870E, DocPrinted},
  {kBoolean,   0x8710, DocRouted},
  {kBoolean,   0x870F, DocSaved},
  {kInteger32, 0x8707, JournalDuration},
};

constexpr FieldRow kJournalFields[] = {
  {0x8700, JournalType,                kText},
  {0x8706, JournalStart,               kDate},
};

// Sticky notes. Their place on the screen has no row, and they have no sender.
constexpr FlagRow kNoteFlags[] = {
  {kInteger32, 0x8B00, Color},
  {kInteger32, 0x8B02, Width},
  {kInteger32, 0x8B03, Height},
};
// clang-format on

constexpr std::size_t ColumnOf(const KindTables& tables) {
  return static_cast<std::size_t>(tables.kind) - static_cast<std::size_t>(recovery::ItemKind::kContact);
}

/// The row of that id in the columns of a kind.
constexpr const FieldRow* FindCommonField(const KindTables& tables, std::uint32_t id) {
  const auto row = std::ranges::find_if(kCommonFields, [&](const CommonField& common) {
    return common.field.id == id && common.kinds[ColumnOf(tables)];
  });
  return row == std::end(kCommonFields) ? nullptr : &row->field;
}

constexpr bool IsSound(const KindTables& tables) {
  const auto notAscending = [](const FieldRow& a, const FieldRow& b) { return a.id >= b.id; };
  return std::ranges::all_of(tables.flags, [](const FlagRow& row) { return Fits(row.type, row.field); }) &&
         std::ranges::all_of(tables.fields, FitsField) &&
         std::ranges::adjacent_find(tables.fields, notAscending) == tables.fields.end() &&
         std::ranges::none_of(tables.fields, [&](const FieldRow& row) { return FindCommonField(tables, row.id); });
}

static_assert(std::ranges::all_of(
    kCommonFlags, [](const FlagRow& row) { return Fits(row.type, row.field); }, &CommonFlag::flag));
static_assert(std::ranges::all_of(kCommonFields, FitsField, &CommonField::field));

}  // namespace

constexpr std::array<KindTables, recovery::kItemKinds - 1> kKindTables = {{
    {recovery::ItemKind::kContact, kContactFlags, kContactFields},
    {recovery::ItemKind::kTask, kTaskFlags, kTaskFields},
    {recovery::ItemKind::kAppointment, kAppointmentFlags, kAppointmentFields},
    {recovery::ItemKind::kMeeting, {}, {}},  // what kinds share alone: no start, no end and no place
    {recovery::ItemKind::kJournal, kJournalFlags, kJournalFields},
    {recovery::ItemKind::kNote, kNoteFlags, {}},
}};
static_assert(std::ranges::all_of(kKindTables, IsSound));

std::optional<output::Field> FindFlag(const KindTables& tables, PropType type, std::uint32_t id) {
  for (const FlagRow& row : tables.flags) {
    if (row.type == type && row.id == id) return row.field;
  }
  for (const CommonFlag& row : kCommonFlags) {
    if (row.flag.type == type && row.flag.id == id && row.kinds[ColumnOf(tables)]) return row.flag.field;
  }
  return std::nullopt;
}

const FieldRow* FindField(const KindTables& tables, std::uint32_t id) {
  const auto row = std::ranges::lower_bound(tables.fields, id, {}, &FieldRow::id);
  return row != tables.fields.end() && row->id == id ? &*row : FindCommonField(tables, id);
}

}  // namespace velmora::items
