#include "store/messaging/objects/message_writer.h"

#include <algorithm>

#include "store/format/property_tags.h"
#include "store/format/store_nodes.h"
#include "store/ltp/multi_value.h"
#include "store/ltp/table_context_writer.h"
#include "store/messaging/tables/table_schemas.h"
#include "store/messaging/values/identity.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

constexpr std::uint32_t kFirstAttachmentIndex = 0x401;

/// The columns of a table of recipients: those of every such table, and behind them in each group of cells what the
/// rows have beside, as far as a row can hold it.
class RecipientColumns {
 public:
  explicit RecipientColumns(const std::vector<std::vector<ltp::PropertyView>>& rows)
      : columns_(schema::kRecipients.columns.begin(), schema::kRecipients.columns.end()) {
    for (const auto& row : rows) {
      for (const ltp::PropertyView& cell : row) Add(cell.tag);
    }
    if (columns_.size() > schema::kRecipients.columns.size()) Place();
  }

  const ltp::TableSchema& Schema() const { return schema_; }

 private:
  void Add(PropTag tag) {
    const auto place = std::ranges::lower_bound(columns_, tag, {}, &ltp::Column::tag);
    if (place != columns_.end() && place->tag == tag) return;
    const std::uint8_t size = ltp::CellSize(TypeOf(tag));
    if (columns_.size() == ltp::kMaxColumns || rowSize_ + size + 1 > ltp::kMaxRowSize) return;
    rowSize_ += size;
    columns_.insert(place, {tag, 0, size, static_cast<std::uint8_t>(columns_.size())});
  }

  /// Cells of 8 and 4 bytes come first in a row, row id and version at their head, then those of 2 and of 1.
  void Place() {
    std::uint16_t end = 0;
    std::uint16_t* groupEnd = schema_.rgib.data();
    const auto place = [&](auto isOfGroup) {
      for (ltp::Column& column : columns_) {
        if (column.iBit < 2 || !isOfGroup(column.cbData)) continue;
        column.ibData = end;
        end += column.cbData;
      }
      *groupEnd++ = end;
    };
    end = 2 * sizeof(std::uint32_t);
    place([](std::uint8_t size) { return size >= 4; });
    place([](std::uint8_t size) { return size == 2; });
    place([](std::uint8_t size) { return size == 1; });
    *groupEnd = static_cast<std::uint16_t>(end + (columns_.size() + 7) / 8);
    schema_.columns = columns_;
  }

  std::vector<ltp::Column> columns_;
  std::size_t rowSize_ = schema::kRecipients.RowSize() + ltp::kMaxColumns / 8;
  ltp::TableSchema schema_ = schema::kRecipients;
};

}  // namespace

void MessageWriter::AddRecipients(const std::vector<PropertyBag>& recipients) {
  if (recipients.empty()) return;
  std::vector<std::vector<ltp::PropertyView>> rows;
  rows.reserve(recipients.size());
  for (const PropertyBag& recipient : recipients) rows.push_back(recipient.Views());
  const RecipientColumns columns(rows);
  ltp::TableContextWriter table(ndb_, columns.Schema());
  for (std::size_t i = 0; i < rows.size(); ++i) table.AddRow(static_cast<std::uint32_t>(i), rows[i]);
  message_.AddSubnode(nid::kRecipientTable, table.Finish());
}

void MessageWriter::AddAttachments(std::vector<PropertyBag>& attachments) {
  if (attachments.empty()) return;
  ltp::TableContextWriter table(ndb_, schema::kAttachments);
  for (std::size_t i = 0; i < attachments.size(); ++i) {
    PropertyBag& attachment = attachments[i];
    attachment.Remove(tag::kAttachSize);
    attachment.AddTo(attachment_);
    // The size counts all values, its own four bytes included.
    attachment.PutInteger32(tag::kAttachSize, Size32(attachment_.ValueBytes() + sizeof(std::int32_t)));
    attachment_.AddInteger32(tag::kAttachSize, attachment.Integer32(tag::kAttachSize));
    const Nid nid = MakeNid(NidType::kAttachment, kFirstAttachmentIndex + static_cast<std::uint32_t>(i));
    message_.AddSubnode(nid, attachment_.Finish());
    table.AddRow(Value(nid), attachment.Views());
  }
  message_.AddSubnode(nid::kAttachmentTable, table.Finish());
}

WrittenMessage MessageWriter::Write(Message message) {
  PropertyBag& properties = message.properties;
  const std::int32_t flags = properties.Integer32(tag::kMessageFlags) & ~(kMessageHasAttachments | kMessageAssociated);
  properties.PutInteger32(tag::kMessageFlags, flags | (message.attachments.empty() ? 0 : kMessageHasAttachments) |
                                                  (message.isAssociated ? kMessageAssociated : 0));
  properties.Remove(tag::kMessageSize);
  try {
    AddRecipients(message.recipients);
    AddAttachments(message.attachments);
    properties.AddTo(message_);
    message_.AddDataSize(tag::kMessageSize);
    const ndb::WrittenNode node = message_.Finish();
    properties.PutInteger32(tag::kMessageSize, Size32(node.dataSize));
    return {node, std::move(properties)};
  } catch (...) {
    message_.Clear();
    attachment_.Clear();
    throw;
  }
}

PropertyBag RowOf(const ltp::TableSchema& schema, const PropertyBag& message) {
  PropertyBag row;
  for (const ltp::Column& column : schema.columns) {
    if (column.iBit < 2 || message.TagOf(column.tag) != column.tag) continue;
    const auto value = message.Value(column.tag);
    // A subject is as long as the message's, whose limit leaves out the two characters before it.
    const bool isCut = TypeOf(column.tag) == PropType::kString && column.tag != tag::kSubject;
    if (isCut && value.size() > kNameLimit * sizeof(char16_t)) {
      const text::Text text = ltp::DecodeText(value);
      row.PutText(column.tag, CutToCharacters(text, kNameLimit));
    } else {
      row.PutBytes(column.tag, value);
    }
  }
  if (!row.Has(tag::kMessageStatus)) row.PutInteger32(tag::kMessageStatus, 0);
  const text::Text topic = ltp::DecodeText(message.Value(tag::kConversationTopic));
  if (const auto id = ConversationIdOf(topic); id && !row.Has(tag::kConversationId)) {
    row.PutBytes(tag::kConversationId, *id);
  }
  return row;
}

}  // namespace velmora::messaging
