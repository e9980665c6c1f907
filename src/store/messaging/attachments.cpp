#include "store/messaging/attachments.h"

#include <algorithm>
#include <array>

#include "store/format/property_tags.h"
#include "store/messaging/failures.h"
#include "store/messaging/stored_text.h"
#include "store/ndb/data_tree_writer.h"

namespace velmora::messaging {
namespace {

constexpr std::size_t kShortContent = ltp::PropertyContextWriter::kHeapValueLimit;
constexpr std::size_t kPieceSize = 8 * kMaxBlockData;

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

Attachment WriteContent(ndb::NdbWriter& ndb, const output::ContentSource& content, text::TextView name) {
  Attachment attachment;
  attachment.name = NameOf(name);
  ndb::DataTreeWriter tree(ndb);
  Bytes piece(static_cast<std::size_t>(std::min<std::uint64_t>(content.Size(), kPieceSize)));
  std::uint64_t offset = 0;
  while (const std::size_t length = content.ReadAt(offset, piece)) {
    WrittenOrRaise(tree.Append(std::span(piece).first(length)));
    offset += length;
  }
  if (tree.Size() <= kShortContent) {
    const auto bytes = tree.Buffered();
    attachment.shortContent.assign(bytes.begin(), bytes.end());
    return attachment;
  }
  attachment.content = WrittenOrRaise(tree.Finish());
  attachment.hold = std::make_shared<TreeHold>(ndb, ndb::NodeTrees{attachment.content.bid});
  return attachment;
}

Attachment AttachMessage(ndb::NdbWriter& ndb, const ndb::WrittenNode& message, text::TextView name) {
  Attachment attachment;
  attachment.name = NameOf(name);
  attachment.message = message;
  attachment.messageNid = ndb.NewNid(NidType::kNormalMessage);
  attachment.hold = std::make_shared<TreeHold>(ndb, message.trees);
  return attachment;
}

std::vector<Attachment> ReadAttachments(ndb::NdbWriter& ndb, ltp::PropertyContext& message) {
  std::vector<Attachment> attachments;
  for (const ndb::SubnodeEntry& entry : ReadOrRaise(message.Subnodes())) {
    if (TypeOf(entry.nid) != NidType::kAttachment) continue;
    ltp::PropertyContext properties = ReadOrRaise(ltp::PropertyContext::Open(ndb, entry.trees));
    Attachment& attachment = attachments.emplace_back();
    attachment.name = properties.Text(tag::kDisplayName).value_or(text::Text());
    attachment.isContactPhoto = properties.Boolean(tag::kAttachmentContactPhoto).value_or(false);
    if (const auto object = properties.ReadObject(tag::kAttachDataObject)) {
      const auto embedded = ReadOrRaise(properties.FindSubnode(object->nid));
      if (embedded) attachment.message = {embedded->trees, object->size};
      attachment.messageNid = object->nid;
      attachment.hold = std::make_shared<TreeHold>(ndb, attachment.message.trees);
    } else if (const auto tree = ReadOrRaise(properties.TreeOf(tag::kAttachDataBinary))) {
      attachment.content = *tree;
      attachment.hold = std::make_shared<TreeHold>(ndb, ndb::NodeTrees{tree->bid});
    } else {
      attachment.shortContent = properties.Binary(tag::kAttachDataBinary).value_or(Bytes());
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
  output::AttachmentTotals totals;
  std::vector<Level> levels{{message.Subnodes().value_or(std::vector<ndb::SubnodeEntry>())}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const ndb::SubnodeEntry entry = level.entries[level.next++];
    if (TypeOf(entry.nid) != NidType::kAttachment) continue;
    auto attachment = ltp::PropertyContext::Open(source, entry.trees);
    if (!attachment) continue;
    const auto object = attachment->ReadObject(tag::kAttachDataObject);
    ++(object ? totals.messages : totals.files);
    if (!object || levels.size() == kDeepest) continue;
    const auto embedded = attachment->FindSubnode(object->nid);
    if (!embedded || !*embedded) continue;
    const auto within = ltp::PropertyContext::Open(source, (*embedded)->trees);
    if (within) levels.push_back({within->Subnodes().value_or(std::vector<ndb::SubnodeEntry>())});
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

Result<ndb::WrittenNode> WriteAttachment(const Attachment& attachment, FileTime now, ltp::PropertyContextWriter& node,
                                         PropertyBag& row) {
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
  bag.AddTo(node);

  if (attachment.IsMessage()) {
    node.AddObject(tag::kAttachDataObject, attachment.messageNid,
                   static_cast<std::uint32_t>(Size32(attachment.message.dataSize)));
    node.AddSubnode(attachment.messageNid, attachment.message);
  } else if (attachment.content.bid != kNoBid) {
    node.AddTree(tag::kAttachDataBinary, attachment.content);
  } else {
    node.Add(tag::kAttachDataBinary, attachment.shortContent);
  }
  // The size counts all values, its own four bytes included.
  const std::int32_t size = Size32(node.ValueBytes() + sizeof(std::int32_t));
  node.AddInteger32(tag::kAttachSize, size);
  bag.PutInteger32(tag::kAttachSize, size);
  row = std::move(bag);
  return node.Finish();
}

}  // namespace velmora::messaging
