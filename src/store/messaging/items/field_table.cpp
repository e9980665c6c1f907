#include "store/messaging/items/field_table.h"

#include <string_view>

#include "store/format/property_tags.h"
#include "store/ltp/multi_value.h"
#include "store/messaging/objects/message_writer.h"
#include "store/messaging/values/compressed_rtf.h"
#include "store/messaging/values/html_body.h"
#include "store/messaging/values/stored_text.h"
#include "store/messaging/values/subject.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;
using output::FieldRead;

enum class Coding {
  kByType,       ///< by the type of the property
  kName,         ///< a text of one line and limited length
  kSubject,      ///< with its prefix told
  kDisplayList,  ///< names of recipients; kept as it is where it names one at all
  kList,         ///< several texts, between ";"
  kKeywords,     ///< several texts, between ";" and ","
  kHtml,
  kRtf,
  kUnRead,  ///< a bit of the message flags
  kSent,    ///< the same
};

struct FieldRow {
  Field field;
  PropTag tag;
  Coding coding = Coding::kByType;
};

constexpr FieldRow kRows[] = {
    {Field::Subject, tag::kSubject, Coding::kSubject},
    {Field::AlternateRecipientAllowed, 0x0002000B},
    {Field::AutoForwarded, 0x0005000B},
    {Field::BCC, tag::kDisplayBcc, Coding::kDisplayList},
    {Field::BillingInformation, Named(kCommon, 0x8535, PropType::kString)},
    {Field::Body, tag::kBody},
    {Field::Categories, Named(kPublicStrings, 0, PropType::kMultipleString), Coding::kKeywords},
    {Field::CC, tag::kDisplayCc, Coding::kDisplayList},
    {Field::Companies, Named(kCommon, 0x8539, PropType::kMultipleString), Coding::kList},
    {Field::ConversationTopic, tag::kConversationTopic, Coding::kName},
    {Field::DeleteAfterSubmit, 0x0E01000B},
    {Field::FlagDueBy, tag::kReplyTime},
    {Field::FlagIcon, 0x10950003},
    {Field::FlagRequest, Named(kCommon, 0x8530, PropType::kString)},
    {Field::FlagStatus, tag::kFlagStatus},
    {Field::HTMLBody, tag::kHtml, Coding::kHtml},
    {Field::Importance, tag::kImportance},
    {Field::Mileage, Named(kCommon, 0x8534, PropType::kString)},
    {Field::NoAging, Named(kCommon, 0x850E, PropType::kBoolean)},
    {Field::OriginatorDeliveryReportRequested, 0x0023000B},
    {Field::ReadReceiptRequested, 0x0029000B},
    {Field::ReceivedTime, tag::kMessageDeliveryTime},
    {Field::RecipientReassignmentProhibited, 0x002B000B},
    {Field::ReminderOverrideDefault, Named(kCommon, 0x851C, PropType::kBoolean)},
    {Field::ReminderSet, Named(kCommon, 0x8503, PropType::kBoolean)},
    {Field::ReminderTime, Named(kCommon, 0x8502, PropType::kTime)},
    {Field::SenderEmailAddress, tag::kSenderEmailAddress},
    {Field::SenderEmailType, tag::kSenderAddressType},
    {Field::SenderName, tag::kSenderName},
    {Field::Sensitivity, tag::kSensitivity},
    {Field::Sent, tag::kMessageFlags, Coding::kSent},
    {Field::SentOn, tag::kClientSubmitTime},
    {Field::SentOnBehalfOfName, tag::kSentRepresentingName},
    {Field::SentOnBehalfOfEmailAddress, tag::kSentRepresentingEmailAddress},
    {Field::SentOnBehalfOfEmailType, tag::kSentRepresentingAddressType},
    {Field::To, tag::kDisplayTo, Coding::kDisplayList},
    {Field::UnRead, tag::kMessageFlags, Coding::kUnRead},
    {Field::RTFBody, tag::kRtfCompressed, Coding::kRtf},
    {Field::Account, 0x3A00001F},
    {Field::Anniversary, 0x3A410040},
    {Field::AssistantName, 0x3A30001F},
    {Field::AssistantTelephoneNumber, 0x3A2E001F},
    {Field::Birthday, 0x3A420040},
    {Field::Business2TelephoneNumber, 0x3A1B001F},
    {Field::BusinessAddress, Named(kAddress, 0x801B, PropType::kString)},
    {Field::BusinessAddressCity, Named(kAddress, 0x8046, PropType::kString)},
    {Field::BusinessAddressCountry, Named(kAddress, 0x8049, PropType::kString)},
    {Field::BusinessAddressPostalCode, Named(kAddress, 0x8048, PropType::kString)},
    {Field::BusinessAddressPostOfficeBox, Named(kAddress, 0x804A, PropType::kString)},
    {Field::BusinessAddressState, Named(kAddress, 0x8047, PropType::kString)},
    {Field::BusinessAddressStreet, Named(kAddress, 0x8045, PropType::kString)},
    {Field::BusinessFaxNumber, 0x3A24001F},
    {Field::BusinessHomePage, 0x3A51001F},
    {Field::BusinessTelephoneNumber, 0x3A08001F},
    {Field::CallbackTelephoneNumber, 0x3A02001F},
    {Field::CarTelephoneNumber, 0x3A1E001F},
    {Field::Children, 0x3A58101F, Coding::kList},
    {Field::CompanyMainTelephoneNumber, 0x3A57001F},
    {Field::CompanyName, 0x3A16001F},
    {Field::ComputerNetworkName, 0x3A49001F},
    {Field::CustomerID, 0x3A4A001F},
    {Field::Department, 0x3A18001F},
    {Field::Email1Address, Named(kAddress, 0x8083, PropType::kString)},
    {Field::Email1AddressType, Named(kAddress, 0x8082, PropType::kString)},
    {Field::Email2Address, Named(kAddress, 0x8093, PropType::kString)},
    {Field::Email2AddressType, Named(kAddress, 0x8092, PropType::kString)},
    {Field::Email2DisplayName, Named(kAddress, 0x8090, PropType::kString)},
    {Field::Email3Address, Named(kAddress, 0x80A3, PropType::kString)},
    {Field::Email3AddressType, Named(kAddress, 0x80A2, PropType::kString)},
    {Field::Email3DisplayName, Named(kAddress, 0x80A0, PropType::kString)},
    {Field::FirstName, 0x3A06001F},
    {Field::FTPSite, 0x3A4C001F},
    {Field::FullName, 0x3001001F, Coding::kName},
    {Field::Gender, 0x3A4D0002},
    {Field::GovernmentIDNumber, 0x3A07001F},
    {Field::Hobby, 0x3A43001F},
    {Field::Home2TelephoneNumber, 0x3A2F001F},
    {Field::HomeAddress, Named(kAddress, 0x801A, PropType::kString)},
    {Field::HomeAddressCity, 0x3A59001F},
    {Field::HomeAddressCountry, 0x3A5A001F},
    {Field::HomeAddressPostalCode, 0x3A5B001F},
    {Field::HomeAddressPostOfficeBox, 0x3A5E001F},
    {Field::HomeAddressState, 0x3A5C001F},
    {Field::HomeAddressStreet, 0x3A5D001F},
    {Field::HomeFaxNumber, 0x3A25001F},
    {Field::HomeTelephoneNumber, 0x3A09001F},
    {Field::IMAddress, Named(kAddress, 0x8062, PropType::kString)},
    {Field::Initials, 0x3A0A001F},
    {Field::InternetFreeBusyAddress, Named(kAddress, 0x80D8, PropType::kString)},
    {Field::ISDNNumber, 0x3A2D001F},
    {Field::JobTitle, 0x3A17001F},
    {Field::Language, 0x3A0C001F},
    {Field::LastName, 0x3A11001F},
    {Field::MailingAddress, 0x3A15001F},
    {Field::ManagerName, 0x3A4E001F},
    {Field::MiddleName, 0x3A44001F},
    {Field::MobileTelephoneNumber, 0x3A1C001F},
    {Field::NickName, 0x3A4F001F},
    {Field::OfficeLocation, 0x3A19001F},
    {Field::OrganizationalIDNumber, 0x3A10001F},
    {Field::OtherAddress, Named(kAddress, 0x801C, PropType::kString)},
    {Field::OtherAddressCity, 0x3A5F001F},
    {Field::OtherAddressCountry, 0x3A60001F},
    {Field::OtherAddressPostalCode, 0x3A61001F},
    {Field::OtherAddressPostOfficeBox, 0x3A64001F},
    {Field::OtherAddressState, 0x3A62001F},
    {Field::OtherAddressStreet, 0x3A63001F},
    {Field::OtherFaxNumber, 0x3A23001F},
    {Field::OtherTelephoneNumber, 0x3A1F001F},
    {Field::PagerNumber, 0x3A21001F},
    {Field::PersonalHomePage, 0x3A50001F},
    {Field::PrimaryTelephoneNumber, 0x3A1A001F},
    {Field::Profession, 0x3A46001F},
    {Field::RadioTelephoneNumber, 0x3A1D001F},
    {Field::ReferredBy, 0x3A47001F},
    {Field::Spouse, 0x3A48001F},
    {Field::Suffix, 0x3A05001F},
    {Field::TelexNumber, 0x3A2C001F},
    {Field::Title, 0x3A45001F},
    {Field::TTYTDDTelephoneNumber, 0x3A4B001F},
    {Field::User1, Named(kAddress, 0x804F, PropType::kString)},
    {Field::User2, Named(kAddress, 0x8050, PropType::kString)},
    {Field::User3, Named(kAddress, 0x8051, PropType::kString)},
    {Field::User4, Named(kAddress, 0x8052, PropType::kString)},
    {Field::YomiCompanyName, Named(kAddress, 0x802E, PropType::kString)},
    {Field::YomiFirstName, Named(kAddress, 0x802C, PropType::kString)},
    {Field::YomiLastName, Named(kAddress, 0x802D, PropType::kString)},
    {Field::Email1DisplayName, Named(kAddress, 0x8080, PropType::kString)},
    {Field::Complete, Named(kTask, 0x811C, PropType::kBoolean)},
    {Field::DateCompleted, Named(kTask, 0x810F, PropType::kTime)},
    {Field::TaskAccepted, Named(kTask, 0x8108, PropType::kBoolean)},
    {Field::DueDate, Named(kTask, 0x8105, PropType::kTime)},
    {Field::Owner, Named(kTask, 0x811F, PropType::kString)},
    {Field::SchedulePlusPriority, Named(kTask, 0x812F, PropType::kString)},
    {Field::StartDate, Named(kTask, 0x8104, PropType::kTime)},
    {Field::Status, Named(kTask, 0x8101, PropType::kInteger32)},
    {Field::AllDayEvent, Named(kAppointment, 0x8215, PropType::kBoolean)},
    {Field::BusyStatus, Named(kAppointment, 0x8205, PropType::kInteger32)},
    {Field::AppointmentDuration, Named(kAppointment, 0x8213, PropType::kInteger32)},
    {Field::End, Named(kAppointment, 0x820E, PropType::kTime)},
    {Field::ReminderSignalTime, Named(kCommon, 0x8560, PropType::kTime)},
    {Field::ResponseRequested, 0x0063000B},
    {Field::AppointmentStart, Named(kAppointment, 0x820D, PropType::kTime)},
    {Field::Location, Named(kAppointment, 0x8208, PropType::kString)},
    {Field::DocPosted, Named(kLog, 0x8711, PropType::kBoolean)},
    {Field::DocPrinted, Named(kLog, 0x870E, PropType::kBoolean)},
    {Field::DocRouted, Named(kLog, 0x8710, PropType::kBoolean)},
    {Field::DocSaved, Named(kLog, 0x870F, PropType::kBoolean)},
    {Field::JournalDuration, Named(kLog, 0x8707, PropType::kInteger32)},
    {Field::JournalStart, Named(kLog, 0x8706, PropType::kTime)},
    {Field::JournalType, Named(kLog, 0x8700, PropType::kString)},
    {Field::Width, Named(kNote, 0x8B02, PropType::kInteger32)},
    {Field::Height, Named(kNote, 0x8B03, PropType::kInteger32)},
    {Field::Color, Named(kNote, 0x8B00, PropType::kInteger32)},
};

constexpr bool RowsStandInOrder() {
  if (std::size(kRows) != output::kFieldCount) return false;
  for (std::size_t i = 0; i < output::kFieldCount; ++i) {
    if (kRows[i].field != output::kFields[i].field) return false;
  }
  return true;
}
static_assert(RowsStandInOrder());

const FieldRow& RowOf(Field field) { return kRows[static_cast<std::size_t>(field)]; }

text::TextView SeparatorsOf(Coding coding) { return coding == Coding::kKeywords ? u";," : u";"; }

void PutHtml(PropTag tag, std::string_view bytes, std::int32_t codePage, PropertyBag& bag) {
  if (bytes.empty()) return;
  bag.PutBytes(tag, std::as_bytes(std::span(bytes)));
  bag.PutInteger32(tag::kInternetCodepage, codePage);
}

void PutTextField(const FieldRow& row, text::TextView text, const text::CodePage& codePage, PropertyBag& bag) {
  switch (row.coding) {
    case Coding::kName:
      bag.PutName(row.tag, text);
      break;
    case Coding::kSubject:
      bag.PutText(row.tag, StoreSubject(text).stored);
      break;
    case Coding::kDisplayList:
      if (!SplitList(text, u";").empty()) bag.PutText(row.tag, text);
      break;
    case Coding::kList:
    case Coding::kKeywords:
      bag.PutTexts(row.tag, SplitList(text, SeparatorsOf(row.coding)));
      break;
    case Coding::kHtml: {
      const HtmlBody body = StoreHtml(text, codePage);
      PutHtml(row.tag, body.bytes, body.codePage, bag);
      break;
    }
    case Coding::kRtf:
      if (const Bytes rtf = StoreRtf(text); !rtf.empty()) bag.PutBytes(row.tag, rtf);
      break;
    default:
      bag.PutText(row.tag, text);
  }
}

text::Text ListText(std::span<const std::byte> value) {
  std::vector<text::Text> parts;
  const auto elements = ltp::DecodeMultiple(value);
  if (elements) {
    for (const auto element : *elements) parts.push_back(ltp::DecodeText(element));
  }
  return JoinList(parts);
}

std::string_view CharsOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

FieldRead ReadTextField(const FieldRow& row, PropTag tag, ltp::PropertyContext& item) {
  const auto value = item.Binary(tag);
  if (!value) return {text::Text(), false};
  const std::span<const std::byte> bytes = *value;
  switch (row.coding) {
    case Coding::kSubject:
      return {text::Text(SubjectText(ltp::DecodeText(bytes))), true};
    case Coding::kList:
    case Coding::kKeywords:
      return {ListText(bytes), true};
    case Coding::kHtml:
      return {HtmlText(CharsOf(bytes), item.Integer32(tag::kInternetCodepage).value_or(0)), true};
    case Coding::kRtf:
      return {RtfText(CharsOf(bytes)), true};
    default:
      return {ltp::DecodeText(bytes), true};
  }
}

/// A value of a fixed size as the operations give it, or the empty one.
template <class Value, class Convert>
FieldRead ReadNumberField(output::FieldType type, const std::optional<Value>& value, Convert convert) {
  if (!value) return {EmptyValue(type), false};
  return {convert(*value), true};
}

}  // namespace

void PutField(const ItemFields::Entry& field, const text::CodePage& codePage, PropertyBag& bag) {
  const FieldRow& row = RowOf(field.field);
  if (field.bytes) return PutHtml(row.tag, *field.bytes, HtmlCodePage(*field.bytes, codePage), bag);
  if (row.coding == Coding::kUnRead || row.coding == Coding::kSent) return;
  switch (output::InfoOf(field.field).type) {
    case output::FieldType::Text:
      PutTextField(row, std::get<text::Text>(field.value), codePage, bag);
      break;
    case output::FieldType::Date:
      if (const auto time = text::FileTimeOf(std::get<text::OleDate>(field.value))) bag.PutTime(row.tag, *time);
      break;
    case output::FieldType::Flag:
      bag.PutBoolean(row.tag, std::get<bool>(field.value));
      break;
    case output::FieldType::Number:
      bag.PutInteger32(row.tag, std::get<std::int32_t>(field.value));
      break;
    case output::FieldType::Number16:
      bag.PutInteger16(row.tag, static_cast<std::int16_t>(std::get<std::int32_t>(field.value)));
      break;
  }
}

FieldRead ReadField(Field field, ltp::PropertyContext& item, const NamedPropertyMap& names) {
  const FieldRow& row = RowOf(field);
  const output::FieldType type = output::InfoOf(field).type;
  const PropTag tag = names.InStore(row.tag);
  switch (type) {
    case output::FieldType::Text:
      return ReadTextField(row, tag, item);
    case output::FieldType::Date:
      return ReadNumberField(type, item.Integer64(tag),
                             [](std::int64_t time) { return text::DateOf(static_cast<text::FileTime>(time)); });
    case output::FieldType::Flag:
      if (row.coding == Coding::kByType)
        return ReadNumberField(type, item.Boolean(tag), [](bool flag) { return flag; });
      return ReadNumberField(type, item.Integer32(tag), [&](std::int32_t flags) {
        return (flags & (row.coding == Coding::kUnRead ? kMessageRead : kMessageUnsent)) == 0;
      });
    case output::FieldType::Number:
      return ReadNumberField(type, item.Integer32(tag), [](std::int32_t number) { return number; });
    case output::FieldType::Number16:
      return ReadNumberField(type, item.Integer16(tag), [](std::int16_t number) { return std::int32_t{number}; });
  }
  return {EmptyValue(type), false};
}

}  // namespace velmora::messaging
