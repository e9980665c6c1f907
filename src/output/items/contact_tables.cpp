// Contacts, and distribution lists, which have no handling of their own: their members have no row.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FlagRow kContactFlags[] = {
  {kInteger16, 0x3A4D, Gender},
};

constexpr FieldRow kContactFields[] = {
  {0x0037, Subject,                      kText},
  {0x0042, SentOnBehalfOfName,           kText},
  {0x0064, SentOnBehalfOfEmailType,      kText},
  {0x0065, SentOnBehalfOfEmailAddress,   kText},
  {0x0070, ConversationTopic,            kText},
  {0x0C1A, SenderName,                   kText},
  {0x0C1E, SenderEmailType,              kText},
  {0x0C1F, SenderEmailAddress,           kText},
  {0x0E06, ReceivedTime,                 kDate},
  {0x1000, Body,                         kText},
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
  {0x8012, Categories,                   kText},
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
  {0x8534, Mileage,                      kText},
  {0x8535, BillingInformation,           kText},
};
// clang-format on

static_assert(IsSound(std::span<const FlagRow>(kContactFlags)));
static_assert(IsSound(std::span<const FieldRow>(kContactFields)));

}  // namespace

constexpr KindTables kContactTables{recovery::ItemKind::kContact, kContactFlags, kContactFields};

}  // namespace velmora::items
