#include "forge/message.h"

#include <algorithm>

#include "forge/checksum.h"
#include "forge/table.h"

namespace velmora::forge {
namespace {

constexpr Nid kAttachmentTable = 0x671;
constexpr Nid kRecipientTable = 0x692;
constexpr Nid kFirstAttachment = 0x8025;
constexpr std::uint32_t kByValue = 1;
constexpr std::uint32_t kEmbedded = 5;
constexpr std::uint32_t kOle = 6;
constexpr std::uint32_t kHasAttachments = 0x10;
constexpr std::size_t kUsualProperties = 32;

void SetText(PropertyList& list, std::uint16_t id, const std::u16string& text) {
  if (!text.empty()) Set(list, Text(id, text));
}

std::u16string JoinNames(const std::vector<Recipient>& recipients, RecipientKind kind) {
  std::u16string joined;
  for (const Recipient& recipient : recipients) {
    if (recipient.kind != kind) continue;
    if (!joined.empty()) joined += u"; ";
    joined += recipient.name;
  }
  return joined;
}

// The mark of a subject with a prefix: 0x0001, then the length of the prefix and one more.
std::u16string MarkedSubject(const Message& message) {
  if (!message.subjectPrefix) return message.subject;
  return std::u16string{u'\x01', static_cast<char16_t>(*message.subjectPrefix + 1)} + message.subject;
}

Bytes SearchKeyOf(const Message& message) {
  Bytes seed = ToUtf16(message.subject + message.messageClass + message.senderName);
  Append(seed, message.delivered.value_or(0), 8);
  if (message.plain) Append(seed, ToUtf16(*message.plain));
  return Noise(16, Checksum(seed));
}

Bytes OneOffEntryId(const Recipient& recipient) {
  Bytes id(4);
  for (const unsigned b :
       {0x81, 0x2B, 0x1F, 0xA4, 0xBE, 0xA3, 0x10, 0x19, 0x9D, 0x6E, 0x00, 0xDD, 0x01, 0x0F, 0x54, 0x02}) {
    Append(id, b, 1);
  }
  Append(id, 0x80010000, 4);
  for (const std::u16string& text : {recipient.name, std::u16string(u"SMTP"), recipient.address}) {
    Append(id, ToUtf16(text));
    Append(id, 0, 2);
  }
  return id;
}

Bytes AddressKey(const Recipient& recipient) {
  Bytes key = ToAnsi(u"SMTP:" + recipient.address);
  for (std::byte& b : key) {
    if (b >= std::byte{'a'} && b <= std::byte{'z'}) b &= ~std::byte{0x20};
  }
  Append(key, 0, 1);
  return key;
}

Context FormRecipients(Store& store, NameMap& names, const std::vector<Recipient>& recipients) {
  std::vector<Column> columns = RecipientColumns();
  std::vector<Row> rows;
  for (const Recipient& recipient : recipients) {
    const Bytes entryId = OneOffEntryId(recipient);
    rows.push_back({.id = static_cast<std::uint32_t>(rows.size()),
                    .cells = ListOf(Int32(0x0C15, static_cast<std::uint32_t>(recipient.kind)), Bool(0x0E0F, true),
                                    Binary(0x0FF9, entryId), Int32(0x0FFE, 6), Binary(0x0FFF, entryId),
                                    Text(0x3001, recipient.name), Text(0x3002, u"SMTP"),
                                    Text(0x3003, recipient.address), Binary(0x300B, AddressKey(recipient)),
                                    Int32(0x3900, 0), Text(0x39FF, recipient.name), Bool(0x3A40, false))});
    for (const Property& property : Resolve(names, recipient.properties)) {
      Set(rows.back().cells, property);
      const bool isThere =
          std::any_of(columns.begin(), columns.end(), [&](const Column& column) { return column.id == property.id; });
      if (!isThere) columns.push_back({property.id, property.type});
    }
  }
  return FormTable(store, columns, rows);
}

// What the values of an attachment take, as its size property counts them.
std::uint32_t ValueBytes(const PropertyList& properties, bool wide) {
  std::size_t size = 0;
  for (const Property& property : properties) {
    Bytes room;
    size += property.type == kObject ? Get(property.data, 4, 4) : StoredData(property, wide, room).size();
  }
  return static_cast<std::uint32_t>(size);
}

struct WrittenAttachment {
  Subnode subnode;
  std::uint64_t size = 0;
  PropertyList properties;
};

Bytes ObjectValue(Nid nid, std::uint64_t size) {
  Bytes value;
  Append(value, nid, 4);
  Append(value, size, 4);
  return value;
}

Subnode WriteObject(Store& store, const OleObject& object) {
  std::vector<Subnode> parts;
  for (const Bytes& part : object.parts) {
    parts.push_back({.nid = 0x803F + static_cast<Nid>(0x20 * parts.size()), .bidData = store.AddData(part)});
  }
  const Bid storage = object.place == Place::kTree ? store.AddTree(object.storage) : store.AddData(object.storage);
  return {.nid = kObjectNode, .bidData = storage, .bidSub = store.AddSubnodes(parts)};
}

WrittenAttachment WriteAttachment(Store& store, NameMap& names, const Attachment& attachment, Nid nid) {
  std::vector<Subnode> subnodes;
  WrittenAttachment written;
  PropertyList& list = written.properties;
  SetText(list, 0x3001, attachment.displayName);
  if (attachment.embedded) {
    const WrittenMessage inner = WriteMessage(store, names, *attachment.embedded);
    const Nid embedded = store.NextEmbeddedNid();
    subnodes.push_back({.nid = embedded, .bidData = inner.bidData, .bidSub = inner.bidSub});
    written.size += inner.size;
    if (!attachment.bare) {
      list.push_back(Raw(0x3701, kObject, ObjectValue(embedded, inner.size), Place::kHeap));
    }
  } else if (attachment.object) {
    subnodes.push_back(WriteObject(store, *attachment.object));
    std::size_t size = attachment.object->storage.size();
    for (const Bytes& part : attachment.object->parts) size += part.size();
    written.size += size;
    list.push_back(Raw(0x3701, kObject, ObjectValue(kObjectNode, size), Place::kHeap));
  } else if (!attachment.data.empty()) {
    list.push_back(Binary(0x3701, attachment.data, attachment.place));
  }
  SetText(list, 0x3704, attachment.shortName.empty() ? attachment.name : attachment.shortName);
  SetText(list, 0x3707, attachment.name);
  SetText(list, 0x370E, attachment.mimeType);
  SetText(list, 0x3712, attachment.contentId);
  if (!attachment.bare) {
    list.push_back(Int32(0x3705, attachment.embedded ? kEmbedded : attachment.object ? kOle : kByValue));
    list.push_back(Int32(0x370B, 0xFFFFFFFF));
    list.push_back(Int32(0x0E20, 0));
  }
  for (const Property& property : Resolve(names, attachment.properties)) Set(list, property);
  if (!attachment.bare) Set(list, Int32(0x0E20, ValueBytes(list, store.traits().wide)));

  const Context context = FormContext(store, list, attachment.context);
  subnodes.insert(subnodes.begin(), context.subnodes.begin(), context.subnodes.end());
  written.size += context.DataSize();
  const Bid data = store.AddDataBlocks(context.blocks);
  written.subnode = {.nid = nid, .bidData = data, .bidSub = store.AddSubnodes(subnodes)};
  return written;
}

}  // namespace

PropertyList MessageProperties(NameMap& names, const Message& message) {
  PropertyList list;
  list.reserve(kUsualProperties);
  SetText(list, 0x001A, message.messageClass);
  if (!message.subject.empty()) {
    list.push_back(Text(0x0037, MarkedSubject(message)));
    const std::u16string topic =
        message.subject.substr(std::min<std::size_t>(message.subjectPrefix.value_or(0), message.subject.size()));
    if (!message.bare) SetText(list, 0x0070, topic);
  }
  if (message.importance) list.push_back(Int32(0x0017, *message.importance));
  if (message.sensitivity) list.push_back(Int32(0x0036, *message.sensitivity));
  if (message.submitted) list.push_back(Time(0x0039, *message.submitted));
  if (message.delivered) list.push_back(Time(0x0E06, *message.delivered));
  SetText(list, 0x0042, message.senderName);
  SetText(list, 0x0C1A, message.senderName);
  if (!message.senderAddress.empty()) {
    list.push_back(Text(0x0064, u"SMTP"));
    list.push_back(Text(0x0065, message.senderAddress));
    list.push_back(Text(0x0C1E, u"SMTP"));
    list.push_back(Text(0x0C1F, message.senderAddress));
  }
  const auto setDisplay = [&](std::uint16_t id, const std::u16string& given, RecipientKind kind) {
    SetText(list, id, given.empty() ? JoinNames(message.recipients, kind) : given);
  };
  setDisplay(0x0E04, message.displayTo, RecipientKind::kTo);
  setDisplay(0x0E03, message.displayCc, RecipientKind::kCc);
  setDisplay(0x0E02, message.displayBcc, RecipientKind::kBcc);
  if (message.plain) list.push_back(Text(0x1000, *message.plain, message.plainPlace));
  if (message.rtf) list.push_back(Binary(0x1009, *message.rtf, message.rtfPlace));
  if (message.html) list.push_back(Binary(0x1013, *message.html, message.htmlPlace));
  if (!message.categories.empty()) {
    list.push_back(Named(PropertySet::kPublic, u"Keywords", Texts(0, message.categories)));
  }
  if (!message.bare) {
    list.push_back(Int32(0x0E07, message.flags | (message.attachments.empty() ? 0 : kHasAttachments)));
    const FileTime made = message.delivered.value_or(TimeOf(2020, 1, 1));
    list.push_back(Time(0x3007, made));
    list.push_back(Time(0x3008, made));
    list.push_back(Binary(0x300B, SearchKeyOf(message)));
  }
  if (message.size || !message.bare) list.push_back(Int32(0x0E08, message.size.value_or(0)));
  list = Resolve(names, std::move(list));
  for (const Property& property : Resolve(names, message.properties)) Set(list, property);
  return list;
}

WrittenMessage WriteMessage(Store& store, NameMap& names, const Message& message) {
  WrittenMessage written{.properties = MessageProperties(names, message)};
  Context context = FormContext(store, written.properties, message.context);
  std::vector<Subnode> subnodes = context.subnodes;
  written.size = context.DataSize();

  const auto addTable = [&](Nid nid, const Context& table) {
    const Bid data = store.AddDataBlocks(table.blocks);
    subnodes.push_back({.nid = nid, .bidData = data, .bidSub = store.AddSubnodes(table.subnodes)});
    written.size += table.DataSize();
  };
  std::vector<Row> rows;
  for (const Attachment& attachment : message.attachments) {
    const Nid nid = kFirstAttachment + static_cast<Nid>(0x20 * rows.size());
    WrittenAttachment one = WriteAttachment(store, names, attachment, nid);
    subnodes.push_back(one.subnode);
    written.size += one.size;
    rows.push_back({.id = nid, .cells = CellsOf(AttachmentColumns(), std::move(one.properties))});
  }
  if (!rows.empty()) addTable(kAttachmentTable, FormTable(store, AttachmentColumns(), rows));
  if (!message.recipients.empty()) addTable(kRecipientTable, FormRecipients(store, names, message.recipients));

  if (!message.size && Find(written.properties, 0x0E08) != nullptr && Find(message.properties, 0x0E08) == nullptr) {
    Set(written.properties, Int32(0x0E08, static_cast<std::uint32_t>(written.size)));
    SetRecordValue(context, 0x0E08, static_cast<std::uint32_t>(written.size));
  }
  std::sort(subnodes.begin(), subnodes.end(), [](const Subnode& a, const Subnode& b) { return a.nid < b.nid; });
  written.bidData = store.AddDataBlocks(context.blocks);
  written.bidSub = store.AddSubnodes(subnodes);
  return written;
}

}  // namespace velmora::forge
