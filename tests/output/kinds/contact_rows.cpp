// Contacts, and distribution lists, which go by the same rules and are shown in fewer lines.
#include "output/kinds/row.h"

namespace velmora::kinds {
namespace {

using enum output::Field;

constexpr const char* kName = "N:«LastName»;«FirstName»;«MiddleName»;«Title»;«Suffix»";
constexpr const char* kHome =
    "ADR;TYPE=home:«HomeAddressPostOfficeBox»;;«HomeAddressStreet»;«HomeAddressCity»;"
    "«HomeAddressState»;«HomeAddressPostalCode»;«HomeAddressCountry»";
constexpr const char* kWork =
    "ADR;TYPE=work:«BusinessAddressPostOfficeBox»;;«BusinessAddressStreet»;"
    "«BusinessAddressCity»;«BusinessAddressState»;«BusinessAddressPostalCode»;"
    "«BusinessAddressCountry»";
constexpr const char* kOther =
    "ADR;TYPE=postal:«OtherAddressPostOfficeBox»;;«OtherAddressStreet»;"
    "«OtherAddressCity»;«OtherAddressState»;«OtherAddressPostalCode»;"
    "«OtherAddressCountry»";

// clang-format off
constexpr Row kContact[] = {
  {Tag(0x0002),     AlternateRecipientAllowed,         "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0005),     AutoForwarded,                     "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0017),     Importance,                        "2",                   kSame,           "Importance=High",                 kNotShown},
  {Tag(0x0023),     OriginatorDeliveryReportRequested, "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0029),     ReadReceiptRequested,              "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x002B),     RecipientReassignmentProhibited,   "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0036),     Sensitivity,                       "2",                   kSame,           "Sensitivity=Private",             kNotShown},
  {Tag(0x0037),     Subject,                           kOwnName,              kSame,           "Subject",                         kNotShown},
  {Tag(0x0042),     SentOnBehalfOfName,                kOwnName,              kSame,           "Sent representing name",          kNotShown},
  {Tag(0x0064),     SentOnBehalfOfEmailType,           "SMTP",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0065),     SentOnBehalfOfEmailAddress,        "on@behalf.example",   kSame,           "Sent representing email address", kNotShown},
  {Tag(0x0070),     ConversationTopic,                 kOwnName,              kSame,           "Conversation topic",              kNotShown},
  {Tag(0x0C1A),     SenderName,                        kOwnName,              kSame,           "Sender name",                     kNotShown},
  {Tag(0x0C1E),     SenderEmailType,                   "SMTP",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0C1F),     SenderEmailAddress,                "sender@sea.example",  kSame,           "Sender email address",            kNotShown},
  {Tag(0x0E01),     DeleteAfterSubmit,                 "true",                kSame,           kNotShown,                         kNotShown},
  {Tag(0x0E06),     ReceivedTime,                      "2021-02-03 10:11:12", kSame,           "Delivery time",                   kNotShown},
  {Tag(0x1000),     Body,                              kOwnName,              kSame,           "Message.txt/*",                   "NOTE:%"},
  {Tag(0x1090),     FlagStatus,                        "2",                   kSame,           kNotShown,                         kNotShown},
  {Tag(0x3001),     FullName,                          kOwnName,              kSame,           "Display name",                    kNotShown},
  {Tag(0x3A00),     Account,                           kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A02),     CallbackTelephoneNumber,           kOwnName,              kSame,           "Callback phone number",           kNotShown},
  {Tag(0x3A05),     Suffix,                            kOwnName,              kSame,           "Generational abbreviation",       kName},
  {Tag(0x3A06),     FirstName,                         kOwnName,              kSame,           "Given name",                      kName},
  {Tag(0x3A07),     GovernmentIDNumber,                kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A08),     BusinessTelephoneNumber,           kOwnName,              kSame,           "Business phone number 1",         "TEL;TYPE=work,voice:%"},
  {Tag(0x3A09),     HomeTelephoneNumber,               kOwnName,              kSame,           "Home phone number",               "TEL;TYPE=home,voice:%"},
  {Tag(0x3A0A),     Initials,                          kOwnName,              kSame,           "Initials",                        kNotShown},
  {Tag(0x3A0C),     Language,                          kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A10),     OrganizationalIDNumber,            kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A11),     LastName,                          kOwnName,              kSame,           "Surname",                         kName},
  {Tag(0x3A15),     MailingAddress,                    kOwnName,              kSame,           "Postal address",                  kNotShown},
  {Tag(0x3A16),     CompanyName,                       kOwnName,              kSame,           "Company name",                    "ORG:%"},
  {Tag(0x3A17),     JobTitle,                          kOwnName,              kSame,           "Job title",                       "TITLE:%"},
  {Tag(0x3A18),     Department,                        kOwnName,              kSame,           "Department name",                 kNotShown},
  {Tag(0x3A19),     OfficeLocation,                    kOwnName,              kSame,           "Office location",                 kNotShown},
  {Tag(0x3A1A),     PrimaryTelephoneNumber,            kOwnName,              kSame,           "Primary phone number",            "TEL;TYPE=phone,pref:%"},
  {Tag(0x3A1B),     Business2TelephoneNumber,          kOwnName,              kSame,           "Business phone number 2",         "TEL;TYPE=work,voice:%"},
  {Tag(0x3A1C),     MobileTelephoneNumber,             kOwnName,              kSame,           "Mobile phone number",             "TEL;TYPE=cell,voice:%"},
  {Tag(0x3A1D),     RadioTelephoneNumber,              kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=pcs:%"},
  {Tag(0x3A1E),     CarTelephoneNumber,                kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=car,voice:%"},
  {Tag(0x3A1F),     OtherTelephoneNumber,              kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=msg:%"},
  {Tag(0x3A21),     PagerNumber,                       kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=pager:%"},
  {Tag(0x3A23),     OtherFaxNumber,                    kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=fax,pref:%"},
  {Tag(0x3A24),     BusinessFaxNumber,                 kOwnName,              kSame,           "Business fax number",             "TEL;TYPE=work,fax:%"},
  {Tag(0x3A25),     HomeFaxNumber,                     kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=home,fax:%"},
  {Tag(0x3A26),     BusinessAddressCountry,            kOwnName,              Address(0x8049), "Country",                         kWork},
  {Tag(0x3A27),     BusinessAddressCity,               kOwnName,              Address(0x8046), "Locality",                        kWork},
  {Tag(0x3A28),     BusinessAddressState,              kOwnName,              Address(0x8047), kNotShown,                         kWork},
  {Tag(0x3A29),     BusinessAddressStreet,             kOwnName,              Address(0x8045), kNotShown,                         kWork},
  {Tag(0x3A2A),     BusinessAddressPostalCode,         kOwnName,              Address(0x8048), kNotShown,                         kWork},
  {Tag(0x3A2B),     BusinessAddressPostOfficeBox,      kOwnName,              Address(0x804A), kNotShown,                         kWork},
  {Tag(0x3A2C),     TelexNumber,                       kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=bbs:%"},
  {Tag(0x3A2D),     ISDNNumber,                        kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=isdn:%"},
  {Tag(0x3A2E),     AssistantTelephoneNumber,          kOwnName,              kSame,           kNotShown,                         "TEL:%"},
  {Tag(0x3A2F),     Home2TelephoneNumber,              kOwnName,              kSame,           kNotShown,                         "TEL;TYPE=home,voice:%"},
  {Tag(0x3A30),     AssistantName,                     kOwnName,              kSame,           kNotShown,                         "FN:%"},
  {Tag(0x3A41),     Anniversary,                       "2001-09-08 00:00:00", kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A42),     Birthday,                          "1974-03-09 00:00:00", kSame,           kNotShown,                         "BDAY:1974-03-09T00:00:00Z"},
  {Tag(0x3A43),     Hobby,                             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A44),     MiddleName,                        kOwnName,              kSame,           kNotShown,                         kName},
  {Tag(0x3A45),     Title,                             kOwnName,              kSame,           "Title",                           kName},
  {Tag(0x3A46),     Profession,                        kOwnName,              kSame,           kNotShown,                         "ROLE:%"},
  {Tag(0x3A47),     ReferredBy,                        kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A48),     Spouse,                            kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A49),     ComputerNetworkName,               kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4A),     CustomerID,                        kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4B),     TTYTDDTelephoneNumber,             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4C),     FTPSite,                           kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4D),     Gender,                            "2",                   kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4E),     ManagerName,                       kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A4F),     NickName,                          kOwnName,              kSame,           kNotShown,                         "NICKNAME:%"},
  {Tag(0x3A50),     PersonalHomePage,                  kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A51),     BusinessHomePage,                  kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A57),     CompanyMainTelephoneNumber,        kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A58),     Children,                          "Ann Vera",            kSame,           kNotShown,                         kNotShown},
  {Tag(0x3A59),     HomeAddressCity,                   kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5A),     HomeAddressCountry,                kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5B),     HomeAddressPostalCode,             kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5C),     HomeAddressState,                  kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5D),     HomeAddressStreet,                 kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5E),     HomeAddressPostOfficeBox,          kOwnName,              kSame,           kNotShown,                         kHome},
  {Tag(0x3A5F),     OtherAddressCity,                  kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x3A60),     OtherAddressCountry,               kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x3A61),     OtherAddressPostalCode,            kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x3A62),     OtherAddressState,                 kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x3A63),     OtherAddressStreet,                kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x3A64),     OtherAddressPostOfficeBox,         kOwnName,              kSame,           kNotShown,                         kOther},
  {Tag(0x6849),     InternetFreeBusyAddress,           kOwnName,              Address(0x80D8), kNotShown,                         kNotShown},
  {kKeywords,       Categories,                        "Harbours",            kSame,           kNotShown,                         kNotShown},
  {Address(0x801A), HomeAddress,                       kOwnName,              kSame,           kNotShown,                         "LABEL;TYPE=home:%"},
  {Address(0x801B), BusinessAddress,                   kOwnName,              kSame,           kNotShown,                         "LABEL;TYPE=work:%"},
  {Address(0x801C), OtherAddress,                      kOwnName,              kSame,           kNotShown,                         "LABEL;TYPE=postal:%"},
  {Address(0x802C), YomiFirstName,                     kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x802D), YomiLastName,                      kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x802E), YomiCompanyName,                   kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x804F), User1,                             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8050), User2,                             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8051), User3,                             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8052), User4,                             kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8062), IMAddress,                         kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8080), Email1DisplayName,                 kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8082), Email1AddressType,                 "SMTP",                kSame,           kNotShown,                         kNotShown},
  {Address(0x8083), Email1Address,                     "one@fjord.example",   kSame,           "Email address 1",                 "EMAIL:%"},
  {Address(0x8090), Email2DisplayName,                 kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x8092), Email2AddressType,                 "SMTP",                kSame,           kNotShown,                         kNotShown},
  {Address(0x8093), Email2Address,                     "two@fjord.example",   kSame,           "Email address 2",                 "EMAIL:%"},
  {Address(0x80A0), Email3DisplayName,                 kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Address(0x80A2), Email3AddressType,                 "SMTP",                kSame,           kNotShown,                         kNotShown},
  {Address(0x80A3), Email3Address,                     "three@fjord.example", kSame,           "Email address 3",                 "EMAIL:%"},
  {Common(0x8534),  Mileage,                           kOwnName,              kSame,           kNotShown,                         kNotShown},
  {Common(0x8535),  BillingInformation,                kOwnName,              kSame,           kNotShown,                         kNotShown},
};
// clang-format on

}  // namespace

std::span<const Row> ContactRows() { return kContact; }

}  // namespace velmora::kinds
