#include "workflow/panes/fill_kinds.h"

#include <algorithm>
#include <iterator>

namespace velmora::workflow {
namespace {

using output::Field;
using output::ItemInterface;

constexpr GridRow kContactRows[] = {
    {u"Title", Field::Title, RowForm::Text},
    {u"First Name", Field::FirstName, RowForm::Text},
    {u"Middle Name", Field::MiddleName, RowForm::Text},
    {u"Last Name", Field::LastName, RowForm::Text},
    {u"Initials", Field::Initials, RowForm::Text},
    {u"Suffix", Field::Suffix, RowForm::Text},
    {u"Flag Status", Field::FlagStatus, RowForm::Number},
    {u"Company Name", Field::CompanyName, RowForm::Text},
    {u"Job Title", Field::JobTitle, RowForm::Text},
    {u"Subject", Field::Subject, RowForm::Text},
    {u"On Behalf Name", Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Conversation Topic", Field::ConversationTopic, RowForm::Text},
    {u"Sender Name", Field::SenderName, RowForm::Text},
    {u"Sender Email Type", Field::SenderEmailType, RowForm::Text},
    {u"Sent from EmailAddress", Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", Field::SenderEmailAddress, RowForm::Text},
    {u"Email Address", Field::Email1Address, RowForm::Text},
    {u"Emai2 Address", Field::Email2Address, RowForm::Text},
    {u"Email3 Address", Field::Email3Address, RowForm::Text},
    {u"Primary Telephone Number", Field::PrimaryTelephoneNumber, RowForm::Text},
    {u"Business Telephone Number", Field::BusinessTelephoneNumber, RowForm::Text},
    {u"Business2 Telephone Number", Field::Business2TelephoneNumber, RowForm::Text},
    {u"Home Telephone Number", Field::HomeTelephoneNumber, RowForm::Text},
    {u"Home2 Telephone Number", Field::Home2TelephoneNumber, RowForm::Text},
    {u"Callback Telephone Number", Field::CallbackTelephoneNumber, RowForm::Text},
    {u"Mobile Telephone Number", Field::MobileTelephoneNumber, RowForm::Text},
    {u"Radio Telephone Number", Field::RadioTelephoneNumber, RowForm::Text},
    {u"Car Telephone Number", Field::CarTelephoneNumber, RowForm::Text},
    {u"Telex Number", Field::TelexNumber, RowForm::Text},
    {u"Pager Number", Field::PagerNumber, RowForm::Text},
    {u"Other Fax Number", Field::OtherFaxNumber, RowForm::Text},
    {u"Business Fax Number", Field::BusinessFaxNumber, RowForm::Text},
    {u"Home Fax Number", Field::HomeFaxNumber, RowForm::Text},
    {u"ISDN Number", Field::ISDNNumber, RowForm::Text},
    {u"Assistant Telephone Number", Field::AssistantTelephoneNumber, RowForm::Text},
    {u"TTYTDD Telephone Number", Field::TTYTDDTelephoneNumber, RowForm::Text},
    {u"Other Telephone Number", Field::OtherTelephoneNumber, RowForm::Text},
    {u"Content", Field::Body, RowForm::Text},
    {u"Categories", Field::Categories, RowForm::Text},
    {u"Contact Account", Field::Account, RowForm::Text},
    {u"GovernmentID Number", Field::GovernmentIDNumber, RowForm::Text},
    {u"Language", Field::Language, RowForm::Text},
    {u"Office Location", Field::OfficeLocation, RowForm::Text},
    {u"Mailing Address", Field::MailingAddress, RowForm::Text},
    {u"Department", Field::Department, RowForm::Text},
    {u"Assistant Name", Field::AssistantName, RowForm::Text},
    {u"Anniversary", Field::Anniversary, RowForm::Date},
    {u"Birthday", Field::Birthday, RowForm::Date},
    {u"Hobby", Field::Hobby, RowForm::Text},
    {u"Profession", Field::Profession, RowForm::Text},
    {u"Referred By", Field::ReferredBy, RowForm::Text},
    {u"Spouse", Field::Spouse, RowForm::Text},
    {u"Computer Network Name", Field::ComputerNetworkName, RowForm::Text},
    {u"CustomerID", Field::CustomerID, RowForm::Text},
    {u"FTP Site", Field::FTPSite, RowForm::Text},
    {u"Manager Name", Field::ManagerName, RowForm::Text},
    {u"NickName", Field::NickName, RowForm::Text},
    {u"Children", Field::Children, RowForm::Text},
    {u"Home Address City", Field::HomeAddressCity, RowForm::Text},
    {u"Home Address Country", Field::HomeAddressCountry, RowForm::Text},
    {u"Home Address PostalCode", Field::HomeAddressPostalCode, RowForm::Text},
    {u"Home Address State", Field::HomeAddressState, RowForm::Text},
    {u"Home Address Street", Field::HomeAddressStreet, RowForm::Text},
    {u"Home Address PostOfficeBox", Field::HomeAddressPostOfficeBox, RowForm::Text},
    {u"Home Address", Field::HomeAddress, RowForm::Text},
    {u"Business Address City", Field::BusinessAddressCity, RowForm::Text},
    {u"Business Address Country", Field::BusinessAddressCountry, RowForm::Text},
    {u"Business Address Postal Code", Field::BusinessAddressPostalCode, RowForm::Text},
    {u"Business Address State", Field::BusinessAddressState, RowForm::Text},
    {u"Business Address Street", Field::BusinessAddressStreet, RowForm::Text},
    {u"Business Address Post Office Box", Field::BusinessAddressPostOfficeBox, RowForm::Text},
    {u"Business Address", Field::BusinessAddress, RowForm::Text},
    {u"Other Address City", Field::OtherAddressCity, RowForm::Text},
    {u"Other Address Country", Field::OtherAddressCountry, RowForm::Text},
    {u"Other Address PostalCode", Field::OtherAddressPostalCode, RowForm::Text},
    {u"Other Address State", Field::OtherAddressState, RowForm::Text},
    {u"Other Address Street", Field::OtherAddressStreet, RowForm::Text},
    {u"Other Address PostOfficeBox", Field::OtherAddressPostOfficeBox, RowForm::Text},
    {u"Other Address", Field::OtherAddress, RowForm::Text},
    {u"Internet FreeBusy Address", Field::InternetFreeBusyAddress, RowForm::Text},
    {u"IM Address", Field::IMAddress, RowForm::Text},
    {u"Email1 DisplayName", Field::Email1DisplayName, RowForm::Text},
    {u"Email2 DisplayName", Field::Email2DisplayName, RowForm::Text},
    {u"Email3 DisplayName", Field::Email3DisplayName, RowForm::Text},
    {u"Billing Information", Field::BillingInformation, RowForm::Text},
    {u"Mileage", Field::Mileage, RowForm::Text},
    {u"Yomi FirstName", Field::YomiFirstName, RowForm::Text},
    {u"Yomi LastName", Field::YomiLastName, RowForm::Text},
    {u"Yomi CompanyName", Field::YomiCompanyName, RowForm::Text},
    {u"User1", Field::User1, RowForm::Text},
    {u"User2", Field::User2, RowForm::Text},
    {u"User3", Field::User3, RowForm::Text},
};

constexpr GridRow kTaskRows[] = {
    {u"Categories", Field::Categories, RowForm::Text},
    {u"To", Field::To, RowForm::Text},
    {u"Content", Field::Body, RowForm::Text},
    {u"On Behalf Name", Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sent from EmailAddress", Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", Field::SenderEmailAddress, RowForm::Text},
    {u"Conversation Topic", Field::ConversationTopic, RowForm::Text},
    {u"Start Date", Field::StartDate, RowForm::Date},
    {u"Due Date", Field::DueDate, RowForm::Date},
    {u"Received Time", Field::ReceivedTime, RowForm::Time},
    {u"Date Completed", Field::DateCompleted, RowForm::Date},
    {u"Sender Name", Field::SenderName, RowForm::Text},
    {u"Sender Email Type", Field::SenderEmailType, RowForm::Text},
    {u"Flag Request", Field::FlagRequest, RowForm::Text},
    {u"Billing Information", Field::BillingInformation, RowForm::Text},
    {u"Mileage", Field::Mileage, RowForm::Text},
    {u"Companies", Field::Companies, RowForm::Text},
    {u"Owner", Field::Owner, RowForm::Text},
    {u"Schedule Plus Priority", Field::SchedulePlusPriority, RowForm::Text},
    {u"Flag Status", Field::FlagStatus, RowForm::Number},
    {u"Task Status", Field::Status, RowForm::TaskStatus},
    {u"Sensitivity", Field::Sensitivity, RowForm::Sensitivity},
    {u"Importance", Field::Importance, RowForm::Importance},
    {u"Complete", Field::Complete, RowForm::Flag},
    {u"Reminder Set", Field::ReminderSet, RowForm::Flag},
    {u"ReminderOverrideDefault Set", Field::ReminderOverrideDefault, RowForm::Flag},
    {u"OriginatorDeliveryReportRequested Set", Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReadReceiptRequested Set", Field::ReadReceiptRequested, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"DeleteAfterSubmit Set", Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", Field::AutoForwarded, RowForm::Flag},
};

constexpr GridRow kCalendarRows[] = {
    {u"Content", Field::Body, RowForm::Text},
    {u"Location", Field::Location, RowForm::Text},
    {u"ReminderOverrideDefault Set", Field::ReminderOverrideDefault, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"OriginatorDeliveryReportRequested Set", Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReadReceiptRequested Set", Field::ReadReceiptRequested, RowForm::Flag},
    {u"DeleteAfterSubmit Set", Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", Field::AutoForwarded, RowForm::Flag},
    {u"ResponseRequested Set", Field::ResponseRequested, RowForm::Flag},
    {u"Reminder Set", Field::ReminderSet, RowForm::Flag},
    {u"AllDayEvent Set", Field::AllDayEvent, RowForm::Flag},
    {u"FlagStatus", Field::FlagStatus, RowForm::Number},
    {u"Sensitivity", Field::Sensitivity, RowForm::Sensitivity},
    {u"Importance", Field::Importance, RowForm::Importance},
    {u"On Behalf Name", Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sender Name", Field::SenderName, RowForm::Text},
    {u"Sender Email Type", Field::SenderEmailType, RowForm::Text},
    {u"Conversation Topic", Field::ConversationTopic, RowForm::Text},
    {u"Sent from EmailAddress", Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", Field::SenderEmailAddress, RowForm::Text},
    {u"Start Date", Field::AppointmentStart, RowForm::Date},
    {u"End Date", Field::End, RowForm::Date},
    {u"Received Time", Field::ReceivedTime, RowForm::Time},
    {u"Categories", Field::Categories, RowForm::Text},
    {u"Flag Request", Field::FlagRequest, RowForm::Text},
    {u"To", Field::To, RowForm::Text},
    {u"CC", Field::CC, RowForm::Text},
    {u"BCC", Field::BCC, RowForm::Text},
};

constexpr GridRow kNoteRows[] = {
    {u"OriginatorDeliveryReportRequested Set", Field::OriginatorDeliveryReportRequested, RowForm::Flag},
    {u"ReminderSet Set", Field::ReminderSet, RowForm::Flag},
    {u"ReadReceiptRequested Set", Field::ReadReceiptRequested, RowForm::Flag},
    {u"RecipientReassignmentProhibited Set", Field::RecipientReassignmentProhibited, RowForm::Flag},
    {u"AlternateRecipientAllowed Set", Field::AlternateRecipientAllowed, RowForm::Flag},
    {u"DeleteAfterSubmit Set", Field::DeleteAfterSubmit, RowForm::Flag},
    {u"AutoForwarded Set", Field::AutoForwarded, RowForm::Flag},
    {u"ReminderOverrideDefault Set", Field::ReminderOverrideDefault, RowForm::Flag},
    {u"Categories", Field::Categories, RowForm::Text},
    {u"Content", Field::Body, RowForm::Text},
    {u"ConversationTopic", Field::ConversationTopic, RowForm::Text},
    {u"ReceivedTime", Field::ReceivedTime, RowForm::Time},
    {u"FlagStatus", Field::FlagStatus, RowForm::Number},
    {u"Color", Field::Color, RowForm::NoteColour},  // the text comes from another field
    {u"Sensitivity", Field::Sensitivity, RowForm::Sensitivity},
    {u"Width", Field::Width, RowForm::Number},
    {u"Height", Field::Height, RowForm::Number},
};

constexpr GridRow kJournalRows[] = {
    {u"Doc Posted", Field::DocPosted, RowForm::Flag},
    {u"Doc Printed", Field::DocPrinted, RowForm::Flag},
    {u"Doc Saved", Field::DocSaved, RowForm::Flag},
    {u"Doc Routed", Field::DocRouted, RowForm::Flag},
    {u"Reminder Set", Field::ReminderSet, RowForm::Flag},
    {u"Read Receipt Requested", Field::ReadReceiptRequested, RowForm::Flag},
    {u"Recipient Reassignment Prohibited", Field::RecipientReassignmentProhibited, RowForm::Flag},
    {u"Flag Status", Field::FlagStatus, RowForm::Number},
    {u"Sensitivity", Field::Sensitivity, RowForm::Sensitivity},
    {u"Categories", Field::Categories, RowForm::Text},
    {u"Flag Request", Field::FlagRequest, RowForm::Text},
    {u"Content", Field::Body, RowForm::Text},
    {u"To", Field::To, RowForm::Text},
    {u"CC", Field::CC, RowForm::Text},
    {u"BCC", Field::BCC, RowForm::Text},
    {u"On Behalf Name", Field::SentOnBehalfOfName, RowForm::Text},
    {u"Email Protocol Type", Field::SentOnBehalfOfEmailType, RowForm::Text},
    {u"Sender Name", Field::SenderName, RowForm::Text},
    {u"Sender Email Type", Field::SenderEmailType, RowForm::Text},
    {u"Conversation Topic", Field::ConversationTopic, RowForm::Text},
    {u"Sent from EmailAddress", Field::SentOnBehalfOfEmailAddress, RowForm::Text},
    {u"Sender Email Address", Field::SenderEmailAddress, RowForm::Text},
    {u"Start Date", Field::JournalStart, RowForm::Date},
    {u"Received Time", Field::ReceivedTime, RowForm::Time},
};

constexpr FillKind kKinds[] = {
    {kFillContactsMessage, ItemKind::kContact, u"Updating Contacts", ItemInterface::RDOContactItem, Field::FullName,
     kContactRows},
    {kFillTasksMessage, ItemKind::kTask, u"Updating Tasks", ItemInterface::RDOTaskItem, Field::Subject, kTaskRows},
    {kFillCalendarMessage, ItemKind::kAppointment, u"Updating Calendars", ItemInterface::RDOAppointmentItem,
     Field::Subject, kCalendarRows},
    {kFillNotesMessage, ItemKind::kNote, u"Updating Notes", ItemInterface::RDONoteItem, Field::Subject, kNoteRows},
    {kFillJournalMessage, ItemKind::kJournal, u"Updating Journals", ItemInterface::RDOJournalItem, Field::Subject,
     kJournalRows},
};

/// An item of the kind answers to every field that is read of it, with the type that the form of the row takes.
constexpr bool CanBeRead(const FillKind& kind) {
  const auto answers = [&kind](Field field) {
    const output::FieldInfo& info = output::InfoOf(field);
    return info.readable && (info.interface == ItemInterface::RDOMail || info.interface == kind.interface);
  };
  return answers(kind.caption) && std::all_of(kind.rows.begin(), kind.rows.end(), [&](const GridRow& row) {
           return answers(row.field) && output::InfoOf(row.field).type == FieldTypeOf(row.form);
         });
}
static_assert(std::all_of(std::begin(kKinds), std::end(kKinds), CanBeRead));

}  // namespace

std::span<const FillKind> FillKinds() { return kKinds; }

const FillKind* FillKindOf(std::uint32_t message) {
  const auto* const found = std::ranges::find(kKinds, message, &FillKind::message);
  return found == std::end(kKinds) ? nullptr : found;
}

const FillKind* FillKindOfClass(text::TextView containerClass) {
  const std::optional<ItemKind> kind = KindOfClass(containerClass);
  // No folder is made for these alone: they stand among the contacts and the tasks.
  if (containerClass.ends_with(u".DistList") || containerClass.find(u".TaskRequest") != text::TextView::npos) {
    return nullptr;
  }
  const auto* const found = std::ranges::find(kKinds, kind, &FillKind::items);
  return found == std::end(kKinds) ? nullptr : found;
}

}  // namespace velmora::workflow
