// From the fields of an item to the properties of its message object.
#pragma once

#include <vector>

#include "store/messaging/items/item_fields.h"
#include "store/messaging/items/recipients.h"
#include "store/messaging/values/identity.h"
#include "store/messaging/values/property_bag.h"
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
  FileTime created = 0;
};

/// What the properties depend on beside the item.
struct ComposeContext {
  FileTime now = 0;
  const text::CodePage* codePage = nullptr;  ///< of HTML bodies that do not tell their own
  bool hasAttachments = false;
  bool hasPicture = false;
};

/// All properties of the message object but its size.
PropertyBag ComposeItem(const ItemState& item, const ComposeContext& context);

/// The recipients that the display lists of the item name: To, then CC, then BCC.
std::vector<Recipient> RecipientsOf(const ItemFields& fields);

// What each kind adds to the properties of its fields, so that Outlook shows the item as what it is.
void CompleteContact(const ItemState& item, bool hasPicture, PropertyBag& bag);
void CompleteTask(const ItemFields& fields, PropertyBag& bag);
void CompleteAppointment(const ItemState& item, PropertyBag& bag);
void CompleteJournalEntry(const ItemFields& fields, PropertyBag& bag);
void CompleteNote(const ItemFields& fields, PropertyBag& bag);

}  // namespace velmora::messaging
