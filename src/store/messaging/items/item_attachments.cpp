#include "store/messaging/items/item_attachments.h"

#include <algorithm>

#include "store/format/byte_view.h"
#include "store/format/property_tags.h"
#include "store/messaging/failures.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

constexpr std::int32_t kByValue = 1;
constexpr std::int32_t kEmbeddedMessage = 5;
constexpr std::int32_t kNotInText = -1;

constexpr std::size_t kShortBase = 8;
constexpr std::size_t kShortExtension = 3;

/// What of a name an old reader can take: letters, digits and a few marks, in capitals.
text::Text ShortPart(text::TextView part) {
  constexpr text::TextView kMarks = u"!#$%&'()-@^_`{}~";
  text::Text out;
  for (const char16_t unit : AsciiUpper(part)) {
    const bool plain = (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z');
    if (plain || kMarks.find(unit) != text::TextView::npos) {
      out.push_back(unit);
    } else if (unit != u' ' && unit != u'.') {
      out.push_back(u'_');
    }
  }
  return out;
}

text::TextView ExtensionOf(text::TextView name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == text::TextView::npos || dot == 0 ? text::TextView() : name.substr(dot);
}

}  // namespace

bool ItemAttachment::IsMessage() const { return content.TagOf(tag::kAttachDataObject) == tag::kAttachDataObject; }

std::vector<ItemAttachment> ReadAttachments(ndb::NdbWriter& ndb, ltp::PropertyContext& message) {
  std::vector<ItemAttachment> attachments;
  for (const ndb::SubnodeEntry& entry : message.Subnodes()) {
    if (TypeOf(entry.nid) != NidType::kAttachment) continue;
    ltp::PropertyContext properties = ltp::PropertyContext::Open(ndb, entry.trees);
    ItemAttachment& attachment = attachments.emplace_back();
    attachment.name = properties.Text(tag::kDisplayName).value_or(text::Text());
    attachment.isContactPhoto = properties.Boolean(tag::kAttachmentContactPhoto).value_or(false);
    PropertyBag& content = attachment.content;
    if (const auto object = properties.ReadObject(tag::kAttachDataObject)) {
      const auto embedded = properties.FindSubnode(object->nid);
      content.PutBytes(tag::kAttachDataBinary, {});  // should there be no message
      if (!embedded) continue;
      const ndb::WrittenNode node{embedded->trees, object->size};
      content.PutStored(tag::kAttachDataObject, std::make_shared<StoredValue>(ndb, node, object->nid));
    } else if (const auto tree = properties.TreeOf(tag::kAttachDataBinary)) {
      const ndb::WrittenNode node{{tree->bid, {}}, tree->size};
      content.PutStored(tag::kAttachDataBinary, std::make_shared<StoredValue>(ndb, node));
    } else {
      content.PutBytes(tag::kAttachDataBinary, properties.Binary(tag::kAttachDataBinary).value_or(Bytes()));
    }
  }
  return attachments;
}

output::AttachmentTotals CountAttachments(const ndb::BlockSource& source, const ltp::PropertyContext& message) {
  constexpr std::size_t kDeepest = 64;
  struct Level {
    std::vector<ndb::SubnodeEntry> entries;
    std::size_t next = 0;
  };
  const auto subnodesOf = [](const ltp::PropertyContext& properties) {
    return IfReadable([&] { return properties.Subnodes(); }).value_or(std::vector<ndb::SubnodeEntry>());
  };
  const auto open = [&source](const ndb::NodeTrees& trees) {
    return IfReadable([&] { return ltp::PropertyContext::Open(source, trees); });
  };
  output::AttachmentTotals totals;
  std::vector<Level> levels{{subnodesOf(message)}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const ndb::SubnodeEntry entry = level.entries[level.next++];
    if (TypeOf(entry.nid) != NidType::kAttachment) continue;
    auto attachment = open(entry.trees);
    if (!attachment) continue;
    const auto object = attachment->ReadObject(tag::kAttachDataObject);
    ++(object ? totals.messages : totals.files);
    if (!object || levels.size() == kDeepest) continue;
    const auto embedded = IfReadable([&] { return attachment->FindSubnode(object->nid); }).value_or(std::nullopt);
    if (!embedded) continue;
    if (const auto within = open(embedded->trees)) levels.push_back({subnodesOf(*within)});
  }
  return totals;
}

text::Text ShortFileName(text::TextView name) {
  if (name.empty()) return {};
  const text::TextView extension = ExtensionOf(name);
  const text::TextView base = name.substr(0, name.size() - extension.size());
  text::Text shortBase = ShortPart(base);
  text::Text shortExtension = ShortPart(extension);
  const bool fits = shortBase.size() <= kShortBase && shortExtension.size() <= kShortExtension &&
                    shortBase == AsciiUpper(base) &&
                    (extension.empty() || shortExtension == AsciiUpper(extension.substr(1)));
  if (!fits) {
    shortBase.resize(std::min(shortBase.size(), kShortBase - 2));
    shortBase += u"~1";
    shortExtension.resize(std::min(shortExtension.size(), kShortExtension));
  }
  return shortExtension.empty() ? shortBase : shortBase + u"." + shortExtension;
}

PropertyBag ComposeAttachment(const ItemAttachment& attachment, text::FileTime now) {
  PropertyBag bag;
  bag.PutInteger32(tag::kAttachMethod, attachment.IsMessage() ? kEmbeddedMessage : kByValue);
  bag.PutInteger32(tag::kRenderingPosition, kNotInText);
  bag.PutText(tag::kDisplayName, attachment.name);
  bag.PutTime(tag::kCreationTime, now);
  bag.PutTime(tag::kLastModificationTime, now);
  if (!attachment.IsMessage()) {
    // A message in a message has no file name: that is how some readers know it.
    bag.PutText(tag::kAttachFilename, ShortFileName(attachment.name));
    bag.PutText(tag::kAttachLongFilename, attachment.name);
    bag.PutText(tag::kAttachExtension, ExtensionOf(attachment.name));
  }
  if (attachment.isContactPhoto) bag.PutBoolean(tag::kAttachmentContactPhoto, true);
  bag.Put(attachment.content);
  return bag;
}

}  // namespace velmora::messaging
