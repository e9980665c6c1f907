// Messages property by property: the one way in which a message is written. An item of the operations comes here with
// what its fields mean (items/), a message that is copied from another store with all that it had there.
#pragma once

#include <vector>

#include "store/ltp/property_context_writer.h"
#include "store/messaging/objects/property_bag.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::messaging {

/// A message as lists of properties, with any tags. What follows from the rest is made by the writer, whatever the
/// lists say of it: the message's size, two bits of its flags (has attachments, associated), the size of each
/// attachment, the ids of all rows. Values that tables show (subject, names, ...) stand here as bytes.
struct Message {
  PropertyBag properties;
  std::vector<PropertyBag> recipients;   ///< rows of the recipient table, with as many columns as a table can have
  std::vector<PropertyBag> attachments;  ///< of any method; one of no content is its properties alone
  bool isAssociated = false;             ///< hidden: in its folder's other table
};

// Bits of PidTagMessageFlags.
inline constexpr std::int32_t kMessageRead = 0x0001;
inline constexpr std::int32_t kMessageUnsent = 0x0008;
inline constexpr std::int32_t kMessageHasAttachments = 0x0010;
inline constexpr std::int32_t kMessageAssociated = 0x0040;

/// A message that was written and that nothing refers to yet.
struct WrittenMessage {
  ndb::WrittenNode node;
  PropertyBag properties;  ///< as they were written
};

/// One message after another; keeps its buffers between them.
class MessageWriter {
 public:
  explicit MessageWriter(ndb::NdbWriter& ndb) : ndb_(ndb), message_(ndb), attachment_(ndb) {}

  /// Raises kCorrupt for a value that does not fit its type; the writer is ready for the next message then.
  [[nodiscard]] WrittenMessage Write(Message message);

 private:
  void AddRecipients(const std::vector<PropertyBag>& recipients);
  void AddAttachments(std::vector<PropertyBag>& attachments);

  ndb::NdbWriter& ndb_;
  ltp::PropertyContextWriter message_;
  ltp::PropertyContextWriter attachment_;
};

/// The cells that a folder's table with these columns shows of a message.
PropertyBag RowOf(const ltp::TableSchema& schema, const PropertyBag& message);

}  // namespace velmora::messaging
