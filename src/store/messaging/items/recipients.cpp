#include "store/messaging/items/recipients.h"

#include "store/format/property_tags.h"
#include "store/messaging/values/identity.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

text::TextView WithoutQuotes(text::TextView name) {
  for (const char16_t quote : {u'"', u'\''}) {
    if (name.size() >= 2 && name.front() == quote && name.back() == quote) {
      return Trimmed(name.substr(1, name.size() - 2));
    }
  }
  return name;
}

Recipient RecipientOf(text::TextView part, RecipientType type) {
  text::TextView name = part;
  text::TextView address;
  const std::size_t open = part.rfind(u'<');
  if (open != text::TextView::npos && part.back() == u'>') {
    const text::TextView inner = Trimmed(part.substr(open + 1, part.size() - open - 2));
    if (IsEmailAddress(inner)) {
      address = inner;
      name = WithoutQuotes(Trimmed(part.substr(0, open)));
      if (name.empty()) name = inner;
    }
  } else if (IsEmailAddress(WithoutQuotes(part))) {
    address = name = WithoutQuotes(part);
  }
  return {type, text::Text(CutToUnits(name, kNameLimit)), text::Text(address)};
}

}  // namespace

bool IsEmailAddress(text::TextView text) {
  const std::size_t at = text.find(u'@');
  return at != text::TextView::npos && at > 0 && at + 1 < text.size() && text.size() <= kNameLimit &&
         text.find(u'@', at + 1) == text::TextView::npos &&
         text.find_first_of(u" \t\r\n<>()[],;:\"'\\") == text::TextView::npos;
}

void AppendRecipients(text::TextView displayList, RecipientType type, std::vector<Recipient>& recipients) {
  for (const text::Text& part : SplitList(Storable(displayList), u";")) recipients.push_back(RecipientOf(part, type));
}

PropertyBag RecipientRow(const Recipient& recipient) {
  constexpr std::int32_t kMailUser = 6;
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

}  // namespace velmora::messaging
