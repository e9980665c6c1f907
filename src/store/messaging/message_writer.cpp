#include "store/messaging/message_writer.h"

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/table_context_writer.h"
#include "store/messaging/entry_id.h"
#include "store/messaging/field_table.h"
#include "store/messaging/table_schemas.h"

namespace velmora::messaging {
namespace {

constexpr std::int32_t kMailUser = 6;
constexpr std::uint32_t kFirstAttachmentIndex = 0x401;

PropertyBag RecipientRow(const Recipient& recipient) {
  constexpr text::TextView kSmtp = u"SMTP";
  PropertyBag row;
  row.PutInteger32(tag::kRecipientType, static_cast<std::int32_t>(recipient.type));
  row.PutBoolean(tag::kResponsibility, true);
  row.PutInteger32(tag::kObjectType, kMailUser);
  row.PutInteger32(tag::kDisplayType, 0);
  row.PutBoolean(tag::kSendRichInfo, false);
  row.PutText(tag::kDisplayName, recipient.displayName);
  row.PutText(tag::k7BitDisplayName, recipient.displayName);
  if (!recipient.address.empty()) {
    const Bytes entryId = OneOffEntryId(recipient.displayName, kSmtp, recipient.address);
    row.PutBytes(tag::kEntryId, entryId);
    row.PutBytes(tag::kRecordKey, entryId);
    row.PutText(tag::kAddressType, kSmtp);
    row.PutText(tag::kEmailAddress, recipient.address);
    row.PutBytes(tag::kSearchKey, AddressSearchKey(kSmtp, recipient.address));
  }
  return row;
}

}  // namespace

Result<void> MessageWriter::AddRecipients(const std::vector<Recipient>& recipients) {
  if (recipients.empty()) return {};
  ltp::TableContextWriter table(ndb_, schema::kRecipients);
  for (std::size_t i = 0; i < recipients.size(); ++i) {
    if (auto added = table.AddRow(static_cast<std::uint32_t>(i), RecipientRow(recipients[i]).Views()); !added)
      return added;
  }
  const auto written = table.Finish();
  if (!written) return tl::unexpected(written.error());
  message_.AddSubnode(nid::kRecipientTable, *written);
  return {};
}

Result<void> MessageWriter::AddAttachments(const std::vector<Attachment>& attachments, FileTime now) {
  if (attachments.empty()) return {};
  ltp::TableContextWriter table(ndb_, schema::kAttachments);
  for (std::size_t i = 0; i < attachments.size(); ++i) {
    const Nid nid = MakeNid(NidType::kAttachment, kFirstAttachmentIndex + static_cast<std::uint32_t>(i));
    PropertyBag row;
    const auto written = WriteAttachment(attachments[i], now, attachment_, row);
    if (!written) return tl::unexpected(written.error());
    message_.AddSubnode(nid, *written);
    if (auto added = table.AddRow(Value(nid), row.Views()); !added) return added;
  }
  const auto written = table.Finish();
  if (!written) return tl::unexpected(written.error());
  message_.AddSubnode(nid::kAttachmentTable, *written);
  return {};
}

Result<WrittenMessage> MessageWriter::Write(const ItemState& item, const std::vector<Attachment>& attachments,
                                            FileTime now, const text::CodePage& codePage) {
  const auto write = [&]() -> Result<WrittenMessage> {
    bool hasPicture = false;
    for (const Attachment& attachment : attachments) hasPicture = hasPicture || attachment.isContactPhoto;
    WrittenMessage message;
    message.properties = ComposeItem(item, {now, &codePage, !attachments.empty(), hasPicture});
    if (auto added = AddRecipients(RecipientsOf(item.fields)); !added) return tl::unexpected(added.error());
    if (auto added = AddAttachments(attachments, now); !added) return tl::unexpected(added.error());
    message.unread = (message.properties.Value(tag::kMessageFlags)[0] & std::byte{kMessageRead}) == std::byte{0};
    message.properties.AddTo(message_);
    message_.AddDataSize(tag::kMessageSize);
    auto node = message_.Finish();
    if (!node) return tl::unexpected(node.error());
    message.node = *node;
    message.properties.PutInteger32(tag::kMessageSize, Size32(node->dataSize));
    return message;
  };
  auto message = write();
  if (!message) {
    message_.Clear();
    attachment_.Clear();
  }
  return message;
}

}  // namespace velmora::messaging
