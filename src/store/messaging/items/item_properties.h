// From the fields of an item to the properties of its message object.
#pragma once

#include <span>

#include "store/messaging/items/item_attachments.h"
#include "store/messaging/items/item_fields.h"
#include "store/messaging/objects/message_writer.h"
#include "store/messaging/objects/property_bag.h"
#include "store/messaging/values/identity.h"
#include "store/operations.h"
#include "text/code_page.h"

namespace velmora::messaging {

/// The last thing that was done with a message.
enum class Verb : std::int32_t { kNone = 0, kReplied = 102, kForwarded = 104 };

/// What an item is, apart from its attachments.
struct ItemState {
  text::Text messageClass;
  ItemFields fields;
  Verb verb = Verb::kNone;
  Uid searchKey{};
  text::FileTime created = 0;
};

/// The message that an item is: the properties of its fields, recipients from its display lists, attachments.
/// `codePage` is that of HTML bodies that do not tell their own.
Message ComposeMessage(const ItemState& item, std::span<const ItemAttachment> attachments, text::FileTime now,
                       const text::CodePage& codePage);

// What each kind adds to the properties of its fields, so that Outlook shows the item as what it is.
void CompleteContact(const ItemState& item, bool hasPicture, PropertyBag& bag);
void CompleteTask(const ItemFields& fields, PropertyBag& bag);
void CompleteAppointment(const ItemState& item, PropertyBag& bag);
void CompleteJournalEntry(const ItemFields& fields, PropertyBag& bag);
void CompleteNote(const ItemFields& fields, PropertyBag& bag);

}  // namespace velmora::messaging
