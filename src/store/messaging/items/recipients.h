// The people that a message goes to, as its display lists name them.
#pragma once

#include <cstdint>
#include <vector>

#include "store/messaging/objects/property_bag.h"
#include "text/text.h"

namespace velmora::messaging {

enum class RecipientType : std::int32_t { kTo = 1, kCc = 2, kBcc = 3 };

struct Recipient {
  RecipientType type = RecipientType::kTo;
  text::Text displayName;  ///< never empty, at most 255 UTF-16 units
  text::Text address;      ///< an SMTP address; empty where the list names the person alone
};

/// Is this an e-mail address such as "name@host"?
bool IsEmailAddress(text::TextView text);

/// Appends the recipients that a display list ("Name; name@host; Name <name@host>") names.
void AppendRecipients(text::TextView displayList, RecipientType type, std::vector<Recipient>& recipients);

/// A recipient's row in the message's table.
PropertyBag RecipientRow(const Recipient& recipient);

}  // namespace velmora::messaging
