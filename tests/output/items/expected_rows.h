// What each kind of item takes over, listed a second time and in another order than the tables under test: first
// flags and numbers, then dates, then texts.
#pragma once

#include <cstdint>

#include "output/items/value_readers.h"

namespace velmora::items::testing {

/// Sorts: T text, O text believed in an "ost" source alone, D date, F flag, N number, S number of 16 bits.
struct ExpectedRow {
  char sort;
  std::uint16_t id;
  const char* operation;
};

// clang-format off
inline constexpr ExpectedRow kExpectedContact[] = {
  {'F', 0x0002, "AlternateRecipientAllowed"}, {'F', 0x0005, "AutoForwarded"},
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x0E01, "DeleteAfterSubmit"}, {'N', 0x0017, "Importance"},
  {'N', 0x0036, "Sensitivity"}, {'N', 0x1090, "FlagStatus"}, {'S', 0x3A4D, "Gender"}, {'D', 0x0E06, "ReceivedTime"},
  {'D', 0x3A41, "Anniversary"}, {'D', 0x3A42, "Birthday"}, {'T', 0x0037, "Subject"},
  {'T', 0x0042, "SentOnBehalfOfName"}, {'T', 0x0064, "SentOnBehalfOfEmailType"},
  {'T', 0x0065, "SentOnBehalfOfEmailAddress"}, {'T', 0x0070, "ConversationTopic"}, {'T', 0x0C1A, "SenderName"},
  {'T', 0x0C1E, "SenderEmailType"}, {'T', 0x0C1F, "SenderEmailAddress"}, {'T', 0x1000, "Body"},
  {'T', 0x3001, "FullName"}, {'T', 0x3A00, "Account"}, {'T', 0x3A02, "CallbackTelephoneNumber"},
  {'T', 0x3A05, "Suffix"}, {'T', 0x3A06, "FirstName"}, {'T', 0x3A07, "GovernmentIDNumber"},
  {'T', 0x3A08, "BusinessTelephoneNumber"}, {'T', 0x3A09, "HomeTelephoneNumber"}, {'T', 0x3A0A, "Initials"},
  {'T', 0x3A0C, "Language"}, {'T', 0x3A0D, "OfficeLocation"}, {'T', 0x3A10, "OrganizationalIDNumber"},
  {'T', 0x3A11, "LastName"}, {'T', 0x3A15, "MailingAddress"}, {'T', 0x3A16, "CompanyName"}, {'T', 0x3A17, "JobTitle"},
  {'T', 0x3A18, "Department"}, {'T', 0x3A19, "OfficeLocation"}, {'T', 0x3A1A, "PrimaryTelephoneNumber"},
  {'T', 0x3A1B, "Business2TelephoneNumber"}, {'T', 0x3A1C, "MobileTelephoneNumber"},
  {'T', 0x3A1D, "RadioTelephoneNumber"}, {'T', 0x3A1E, "CarTelephoneNumber"}, {'T', 0x3A1F, "OtherTelephoneNumber"},
  {'T', 0x3A21, "PagerNumber"}, {'T', 0x3A23, "OtherFaxNumber"}, {'T', 0x3A24, "BusinessFaxNumber"},
  {'T', 0x3A25, "HomeFaxNumber"}, {'T', 0x3A26, "BusinessAddressCountry"}, {'T', 0x3A27, "BusinessAddressCity"},
  {'T', 0x3A28, "BusinessAddressState"}, {'T', 0x3A29, "BusinessAddressStreet"},
  {'T', 0x3A2A, "BusinessAddressPostalCode"}, {'T', 0x3A2B, "BusinessAddressPostOfficeBox"},
  {'T', 0x3A2C, "TelexNumber"}, {'T', 0x3A2D, "ISDNNumber"}, {'T', 0x3A2E, "AssistantTelephoneNumber"},
  {'T', 0x3A2F, "Home2TelephoneNumber"}, {'T', 0x3A30, "AssistantName"}, {'T', 0x3A43, "Hobby"},
  {'T', 0x3A44, "MiddleName"}, {'T', 0x3A45, "Title"}, {'T', 0x3A46, "Profession"}, {'T', 0x3A47, "ReferredBy"},
  {'T', 0x3A48, "Spouse"}, {'T', 0x3A49, "ComputerNetworkName"}, {'T', 0x3A4A, "CustomerID"},
  {'T', 0x3A4B, "TTYTDDTelephoneNumber"}, {'T', 0x3A4C, "FTPSite"}, {'T', 0x3A4E, "ManagerName"},
  {'T', 0x3A4F, "NickName"}, {'T', 0x3A50, "PersonalHomePage"}, {'T', 0x3A51, "BusinessHomePage"},
  {'T', 0x3A57, "CompanyMainTelephoneNumber"}, {'T', 0x3A58, "Children"}, {'T', 0x3A59, "HomeAddressCity"},
  {'T', 0x3A5A, "HomeAddressCountry"}, {'T', 0x3A5B, "HomeAddressPostalCode"}, {'T', 0x3A5C, "HomeAddressState"},
  {'T', 0x3A5D, "HomeAddressStreet"}, {'T', 0x3A5E, "HomeAddressPostOfficeBox"}, {'T', 0x3A5F, "OtherAddressCity"},
  {'T', 0x3A60, "OtherAddressCountry"}, {'T', 0x3A61, "OtherAddressPostalCode"}, {'T', 0x3A62, "OtherAddressState"},
  {'T', 0x3A63, "OtherAddressStreet"}, {'T', 0x3A64, "OtherAddressPostOfficeBox"},
  {'T', 0x6849, "InternetFreeBusyAddress"}, {'T', 0x8012, "Categories"}, {'T', 0x801A, "HomeAddress"},
  {'T', 0x801B, "BusinessAddress"}, {'T', 0x801C, "OtherAddress"}, {'T', 0x8021, "Email1DisplayName"},
  {'T', 0x8022, "Email1Address"}, {'T', 0x802C, "YomiFirstName"}, {'T', 0x802D, "YomiLastName"},
  {'T', 0x802E, "YomiCompanyName"}, {'T', 0x8043, "Email1Address"}, {'T', 0x804F, "User1"}, {'T', 0x8050, "User2"},
  {'T', 0x8051, "User3"}, {'T', 0x8052, "User4"}, {'T', 0x8062, "IMAddress"}, {'T', 0x8063, "Email1Address"},
  {'T', 0x8064, "Email1AddressType"}, {'T', 0x8080, "Email1DisplayName"}, {'T', 0x8082, "Email1AddressType"},
  {'T', 0x8083, "Email1Address"}, {'T', 0x8090, "Email2DisplayName"}, {'T', 0x8092, "Email2AddressType"},
  {'T', 0x8093, "Email2Address"}, {'T', 0x80A0, "Email3DisplayName"}, {'T', 0x80A2, "Email3AddressType"},
  {'T', 0x80A3, "Email3Address"}, {'T', 0x8534, "Mileage"}, {'T', 0x8535, "BillingInformation"}, {'O', 0x6619, "Body"},
};
inline constexpr ExpectedRow kExpectedTask[] = {
  {'F', 0x0002, "AlternateRecipientAllowed"}, {'F', 0x0005, "AutoForwarded"},
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x0E01, "DeleteAfterSubmit"}, {'F', 0x8108, "TaskAccepted"},
  {'F', 0x811C, "Complete"}, {'F', 0x8503, "ReminderSet"}, {'F', 0x850E, "NoAging"},
  {'F', 0x851C, "ReminderOverrideDefault"}, {'N', 0x0017, "Importance"}, {'N', 0x0036, "Sensitivity"},
  {'N', 0x1090, "FlagStatus"}, {'N', 0x8101, "Status"}, {'D', 0x0E06, "ReceivedTime"}, {'D', 0x8104, "StartDate"},
  {'D', 0x8105, "DueDate"}, {'D', 0x810F, "DateCompleted"}, {'T', 0x0026, "SchedulePlusPriority"},
  {'T', 0x0037, "Subject"}, {'T', 0x0042, "SentOnBehalfOfName"}, {'T', 0x0064, "SentOnBehalfOfEmailType"},
  {'T', 0x0065, "SentOnBehalfOfEmailAddress"}, {'T', 0x0070, "ConversationTopic"}, {'T', 0x0C1A, "SenderName"},
  {'T', 0x0C1E, "SenderEmailType"}, {'T', 0x0C1F, "SenderEmailAddress"}, {'T', 0x0E02, "BCC"}, {'T', 0x0E03, "CC"},
  {'T', 0x0E04, "To"}, {'T', 0x1000, "Body"}, {'T', 0x8012, "Categories"}, {'T', 0x811F, "Owner"},
  {'T', 0x8530, "FlagRequest"}, {'T', 0x8534, "Mileage"}, {'T', 0x8535, "BillingInformation"},
  {'T', 0x8539, "Companies"},
};
inline constexpr ExpectedRow kExpectedAppointment[] = {
  {'F', 0x0002, "AlternateRecipientAllowed"}, {'F', 0x0005, "AutoForwarded"},
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x0063, "ResponseRequested"},
  {'F', 0x0E01, "DeleteAfterSubmit"}, {'F', 0x8215, "AllDayEvent"}, {'F', 0x8503, "ReminderSet"},
  {'F', 0x850E, "NoAging"}, {'F', 0x851C, "ReminderOverrideDefault"}, {'N', 0x0017, "Importance"},
  {'N', 0x0036, "Sensitivity"}, {'N', 0x1090, "FlagStatus"}, {'N', 0x8205, "BusyStatus"}, {'N', 0x8213, "Duration"},
  {'D', 0x0E06, "ReceivedTime"}, {'D', 0x820D, "Start"}, {'D', 0x820E, "End"}, {'D', 0x8502, "ReminderTime"},
  {'D', 0x8560, "ReminderSignalTime"}, {'T', 0x0037, "Subject"}, {'T', 0x0042, "SentOnBehalfOfName"},
  {'T', 0x0064, "SentOnBehalfOfEmailType"}, {'T', 0x0065, "SentOnBehalfOfEmailAddress"},
  {'T', 0x0070, "ConversationTopic"}, {'T', 0x0C1A, "SenderName"}, {'T', 0x0C1E, "SenderEmailType"},
  {'T', 0x0C1F, "SenderEmailAddress"}, {'T', 0x0E02, "BCC"}, {'T', 0x0E03, "CC"}, {'T', 0x0E04, "To"},
  {'T', 0x1000, "Body"}, {'T', 0x8012, "Categories"}, {'T', 0x8208, "Location"}, {'T', 0x8530, "FlagRequest"},
  {'T', 0x8539, "Companies"},
};
inline constexpr ExpectedRow kExpectedMeeting[] = {
  {'F', 0x0002, "AlternateRecipientAllowed"}, {'F', 0x0005, "AutoForwarded"},
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x0E01, "DeleteAfterSubmit"}, {'F', 0x8503, "ReminderSet"},
  {'F', 0x850E, "NoAging"}, {'F', 0x851C, "ReminderOverrideDefault"}, {'N', 0x0017, "Importance"},
  {'N', 0x0036, "Sensitivity"}, {'N', 0x1090, "FlagStatus"}, {'D', 0x0E06, "ReceivedTime"},
  {'D', 0x8502, "ReminderTime"}, {'T', 0x0037, "Subject"}, {'T', 0x0042, "SentOnBehalfOfName"},
  {'T', 0x0064, "SentOnBehalfOfEmailType"}, {'T', 0x0065, "SentOnBehalfOfEmailAddress"},
  {'T', 0x0070, "ConversationTopic"}, {'T', 0x0C1A, "SenderName"}, {'T', 0x0C1E, "SenderEmailType"},
  {'T', 0x0C1F, "SenderEmailAddress"}, {'T', 0x0E02, "BCC"}, {'T', 0x0E03, "CC"}, {'T', 0x0E04, "To"},
  {'T', 0x1000, "Body"}, {'T', 0x8012, "Categories"}, {'T', 0x8530, "FlagRequest"}, {'T', 0x8539, "Companies"},
};
inline constexpr ExpectedRow kExpectedJournal[] = {
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x8503, "ReminderSet"}, {'F', 0x870E, "DocPrinted"},
  {'F', 0x870F, "DocSaved"}, {'F', 0x8710, "DocRouted"}, {'F', 0x8711, "DocPosted"}, {'N', 0x0036, "Sensitivity"},
  {'N', 0x1090, "FlagStatus"}, {'N', 0x8707, "Duration"}, {'D', 0x0E06, "ReceivedTime"}, {'D', 0x8706, "Start"},
  {'T', 0x0037, "Subject"}, {'T', 0x0042, "SentOnBehalfOfName"}, {'T', 0x0064, "SentOnBehalfOfEmailType"},
  {'T', 0x0065, "SentOnBehalfOfEmailAddress"}, {'T', 0x0070, "ConversationTopic"}, {'T', 0x0C1A, "SenderName"},
  {'T', 0x0C1E, "SenderEmailType"}, {'T', 0x0C1F, "SenderEmailAddress"}, {'T', 0x0E02, "BCC"}, {'T', 0x0E03, "CC"},
  {'T', 0x0E04, "To"}, {'T', 0x1000, "Body"}, {'T', 0x8012, "Categories"}, {'T', 0x8530, "FlagRequest"},
  {'T', 0x8539, "Companies"}, {'T', 0x8700, "Type"},
};
inline constexpr ExpectedRow kExpectedNote[] = {
  {'F', 0x0002, "AlternateRecipientAllowed"}, {'F', 0x0005, "AutoForwarded"},
  {'F', 0x0023, "OriginatorDeliveryReportRequested"}, {'F', 0x0029, "ReadReceiptRequested"},
  {'F', 0x002B, "RecipientReassignmentProhibited"}, {'F', 0x0E01, "DeleteAfterSubmit"}, {'F', 0x8503, "ReminderSet"},
  {'N', 0x0036, "Sensitivity"}, {'N', 0x1090, "FlagStatus"}, {'N', 0x8B00, "Color"}, {'N', 0x8B02, "Width"},
  {'N', 0x8B03, "Height"}, {'D', 0x0E06, "ReceivedTime"}, {'T', 0x0037, "Subject"}, {'T', 0x0070, "ConversationTopic"},
  {'T', 0x1000, "Body"}, {'T', 0x8012, "Categories"},
};
// clang-format on

}  // namespace velmora::items::testing
