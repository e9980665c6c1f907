// The attachments of an item, from the moment they are added: files, other items, the picture of a contact.
#pragma once

#include <vector>

#include "store/ltp/property_context.h"
#include "store/messaging/objects/property_bag.h"
#include "store/ndb/ndb_writer.h"
#include "store/operations.h"

namespace velmora::messaging {

/// One attachment. A short content lies in memory; a long one, or a message, in the store already, where several items
/// can share it.
struct ItemAttachment {
  text::Text name;  ///< file name and display name
  bool isContactPhoto = false;
  PropertyBag content;  ///< one property: kAttachDataBinary, or kAttachDataObject of a message

  bool IsMessage() const;
};

/// The attachments of a saved message, their contents shared with it. Raises what keeps it from
/// being read (FailureError).
std::vector<ItemAttachment> ReadAttachments(ndb::NdbWriter& ndb, ltp::PropertyContext& message);

/// Counts the attachments of a saved message and of those within it. What cannot be read is not counted.
output::AttachmentTotals CountAttachments(const ndb::BlockSource& source, const ltp::PropertyContext& message);

/// Name of 8 characters, dot and 3, as old readers want it ("LONGNA~1.TXT"); empty for an empty name.
text::Text ShortFileName(text::TextView name);

/// All properties of the attachment's object but its size.
PropertyBag ComposeAttachment(const ItemAttachment& attachment, text::FileTime now);

}  // namespace velmora::messaging
