#include "store/messaging/items/item_properties.h"

#include <algorithm>

#include "store/format/property_tags.h"
#include "store/messaging/items/field_table.h"
#include "store/messaging/items/recipients.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/values/stored_text.h"
#include "store/messaging/values/subject.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;
using output::ItemInterface;

constexpr PropTag kPrivate = Named(kCommon, 0x8506, PropType::kBoolean);
constexpr PropTag kReminderSignalTime = Named(kCommon, 0x8560, PropType::kTime);
constexpr PropTag kTaskDueDate = Named(kTask, 0x8105, PropType::kTime);
constexpr PropTag kToDoTitle = Named(kCommon, 0x85A4, PropType::kString);

constexpr std::int32_t kSensitivityPrivate = 2;
constexpr std::int32_t kFlagged = 2;
constexpr std::int32_t kTimeFlagged = 1;
constexpr std::int32_t kReplied = 0x105;
constexpr std::int32_t kForwarded = 0x106;

enum class NativeBody : std::int32_t { kText = 1, kRtf = 2, kHtml = 3 };

void PutBodyKind(PropertyBag& bag) {
  const bool rtf = bag.Has(tag::kRtfCompressed);
  const bool html = bag.Has(tag::kHtml);
  if (rtf) bag.PutBoolean(tag::kRtfInSync, !html);
  if (rtf || html || bag.Has(tag::kBody)) {
    const NativeBody native = html ? NativeBody::kHtml : rtf ? NativeBody::kRtf : NativeBody::kText;
    bag.PutInteger32(tag::kNativeBody, static_cast<std::int32_t>(native));
  }
}

/// A person of the envelope whose address is known gets the identifiers that make it an address.
struct EnvelopePerson {
  Field name, type, address;
  PropTag typeTag, entryId, searchKey, smtpAddress;
};

constexpr EnvelopePerson kEnvelope[] = {
    {Field::SenderName, Field::SenderEmailType, Field::SenderEmailAddress, tag::kSenderAddressType, tag::kSenderEntryId,
     tag::kSenderSearchKey, tag::kSenderSmtpAddress},
    {Field::SentOnBehalfOfName, Field::SentOnBehalfOfEmailType, Field::SentOnBehalfOfEmailAddress,
     tag::kSentRepresentingAddressType, tag::kSentRepresentingEntryId, tag::kSentRepresentingSearchKey,
     tag::kSentRepresentingSmtpAddress},
};

void PutEnvelope(const ItemFields& fields, PropertyBag& bag) {
  for (const EnvelopePerson& person : kEnvelope) {
    const text::Text address = NameOf(fields.Text(person.address));
    if (address.empty()) continue;
    text::Text type = NameOf(fields.Text(person.type));
    const bool isSmtp = AsciiUpper(type) == u"SMTP" || (type.empty() && IsEmailAddress(address));
    if (type.empty() && !isSmtp) continue;
    if (type.empty()) bag.PutText(person.typeTag, type = u"SMTP");
    text::Text name = NameOf(fields.Text(person.name));
    bag.PutBytes(person.entryId, OneOffEntryId(name.empty() ? address : name, type, address));
    bag.PutBytes(person.searchKey, AddressSearchKey(type, address));
    if (isSmtp) bag.PutText(person.smtpAddress, address);
  }
}

/// A message is one whose sending or arrival counts; the other kinds are never drafts and never unread
/// unless somebody says so.
std::int32_t FlagsOf(const ItemState& item, bool isMail) {
  const bool read = !item.fields.Flag(Field::UnRead).value_or(isMail);
  const bool sent = item.fields.Flag(Field::Sent).value_or(!isMail);
  return (read ? kMessageRead : 0) | (sent ? 0 : kMessageUnsent);
}

void PutTimes(const ItemState& item, text::FileTime now, PropertyBag& bag) {
  bag.PutTime(tag::kCreationTime, item.created);
  bag.PutTime(tag::kLastModificationTime, now);
  // Folders sort by it, so every message has one.
  if (!bag.Has(tag::kMessageDeliveryTime)) {
    bag.PutTime(tag::kMessageDeliveryTime, item.fields.Time(Field::SentOn).value_or(item.created));
  }
}

/// A flag with a date counts from its day; the to-do list looks for it in the properties of a task.
void PutFollowUp(const ItemFields& fields, PropertyBag& bag) {
  const auto due = fields.Time(Field::FlagDueBy);
  if (!due || fields.Number(Field::FlagStatus) != kFlagged) return;
  bag.PutInteger32(tag::kToDoItemFlags, kTimeFlagged);
  bag.PutTime(kTaskDueDate, *due);
  bag.PutTime(kCommonEnd, *due);
  bag.PutText(kToDoTitle, SubjectText(StoreSubject(fields.Text(Field::Subject)).stored));
}

void PutVerb(Verb verb, PropertyBag& bag) {
  if (verb == Verb::kNone) return;
  bag.PutInteger32(tag::kIconIndex, verb == Verb::kReplied ? kReplied : kForwarded);
  bag.PutInteger32(tag::kLastVerbExecuted, static_cast<std::int32_t>(verb));
}

PropertyBag ComposeProperties(const ItemState& item, bool hasPicture, text::FileTime now,
                              const text::CodePage& codePage) {
  PropertyBag bag;
  const ItemInterface kind = output::TypedInterfaceOf(item.messageClass);
  const bool isMail = kind == ItemInterface::RDOMail;
  bag.PutText(tag::kMessageClass, item.messageClass);
  for (const ItemFields::Entry& field : item.fields.Entries()) PutField(field, codePage, bag);

  switch (kind) {
    case ItemInterface::RDOMail:
      break;
    case ItemInterface::RDOContactItem:
      CompleteContact(item, hasPicture, bag);
      break;
    case ItemInterface::RDOTaskItem:
      CompleteTask(item.fields, bag);
      break;
    case ItemInterface::RDOAppointmentItem:
      CompleteAppointment(item, bag);
      break;
    case ItemInterface::RDOJournalItem:
      CompleteJournalEntry(item.fields, bag);
      break;
    case ItemInterface::RDONoteItem:
      CompleteNote(item.fields, bag);
      break;
  }

  if (!bag.Has(tag::kConversationTopic)) {
    bag.PutText(tag::kConversationTopic, StoreSubject(item.fields.Text(Field::Subject)).normalized);
  }
  if (const auto sensitivity = item.fields.Number(Field::Sensitivity)) {
    bag.PutBoolean(kPrivate, *sensitivity == kSensitivityPrivate);
  }
  // The time at which a reminder rings is a field of appointments; for the others it is the reminder's time.
  if (const auto reminder = item.fields.Time(Field::ReminderTime);
      reminder && kind != ItemInterface::RDOAppointmentItem) {
    bag.PutTime(kReminderSignalTime, *reminder);
  }
  PutBodyKind(bag);
  PutEnvelope(item.fields, bag);
  PutTimes(item, now, bag);
  if (isMail) PutFollowUp(item.fields, bag);
  PutVerb(item.verb, bag);
  bag.PutInteger32(tag::kMessageFlags, FlagsOf(item, isMail));
  bag.PutBytes(tag::kSearchKey, item.searchKey);
  return bag;
}

}  // namespace

Message ComposeMessage(const ItemState& item, std::span<const ItemAttachment> attachments, text::FileTime now,
                       const text::CodePage& codePage) {
  Message message;
  const bool hasPicture = std::ranges::any_of(attachments, &ItemAttachment::isContactPhoto);
  message.properties = ComposeProperties(item, hasPicture, now, codePage);
  std::vector<Recipient> recipients;
  AppendRecipients(item.fields.Text(Field::To), RecipientType::kTo, recipients);
  AppendRecipients(item.fields.Text(Field::CC), RecipientType::kCc, recipients);
  AppendRecipients(item.fields.Text(Field::BCC), RecipientType::kBcc, recipients);
  for (const Recipient& recipient : recipients) message.recipients.push_back(RecipientRow(recipient));
  for (const ItemAttachment& attachment : attachments) {
    message.attachments.push_back(ComposeAttachment(attachment, now));
  }
  return message;
}

}  // namespace velmora::messaging
