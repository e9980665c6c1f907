// Writes the message object of an item: its properties, its recipients, its attachments.
#pragma once

#include <vector>

#include "store/ltp/property_context_writer.h"
#include "store/messaging/attachments.h"
#include "store/messaging/items/item_properties.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::messaging {

/// A message that was written and that nothing refers to yet.
struct WrittenMessage {
  ndb::WrittenNode node;
  PropertyBag properties;  ///< with the message's size
  bool unread = false;
};

/// One message after another; keeps its buffers between them.
class MessageWriter {
 public:
  explicit MessageWriter(ndb::NdbWriter& ndb) : ndb_(ndb), message_(ndb), attachment_(ndb) {}

  Result<WrittenMessage> Write(const ItemState& item, const std::vector<Attachment>& attachments, FileTime now,
                               const text::CodePage& codePage);

 private:
  Result<void> AddRecipients(const std::vector<Recipient>& recipients);
  Result<void> AddAttachments(const std::vector<Attachment>& attachments, FileTime now);

  ndb::NdbWriter& ndb_;
  ltp::PropertyContextWriter message_;
  ltp::PropertyContextWriter attachment_;
};

}  // namespace velmora::messaging
