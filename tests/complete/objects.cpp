#include "complete/objects.h"

#include <algorithm>
#include <iomanip>
#include <stdexcept>

#include "forge/names.h"
#include "store/format/failures.h"
#include "store/format/store_nodes.h"

namespace velmora::complete {
namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;

std::u16string FromUtf16(std::span<const std::byte> bytes) {
  std::u16string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text.push_back(static_cast<char16_t>(forge::Get(bytes, i, 2)));
  }
  return text;
}

}  // namespace

StoreObjects::StoreObjects(Bytes bytes) : file_(std::move(bytes)), reader_(ndb::StoreReader::Open(file_)) {
  for (const Failure& fault : reader_->Damage().List()) throw std::runtime_error(TextOf(fault));
  ReadNames();
}

void StoreObjects::ReadNames() {
  if (!Has(nid::kNameToIdMap)) return;
  const Properties map = ReadProperties(reader_->FindNode(nid::kNameToIdMap)->trees);
  const auto stream = [&](std::uint16_t id) {
    const Value* value = Find(map, id);
    return value != nullptr ? value->bytes : Bytes();
  };
  const Bytes sets = stream(2);
  const Bytes entries = stream(3);
  const Bytes texts = stream(4);
  for (std::size_t at = 0; at + 8 <= entries.size(); at += 8) {
    const auto number = static_cast<std::uint32_t>(forge::Get(entries, at, 4));
    const std::uint64_t kind = forge::Get(entries, at + 4, 2);
    PropertyKey key;
    if (kind >> 1 < 3) {
      key.set = forge::SetGuid(kind >> 1 == 1 ? forge::PropertySet::kMapi : forge::PropertySet::kPublic);
    } else {
      const auto set = sets.begin() + static_cast<std::ptrdiff_t>(16 * ((kind >> 1) - 3));
      key.set.assign(set, set + 16);
    }
    if ((kind & 1) != 0) {
      key.text = FromUtf16(std::span(texts).subspan(number + 4, forge::Get(texts, number, 4)));
    } else {
      key.number = number;
    }
    names_[static_cast<std::uint16_t>(0x8000 + forge::Get(entries, at + 6, 2))] = std::move(key);
  }
}

PropertyKey StoreObjects::KeyOf(std::uint16_t id) const {
  const auto found = names_.find(id);
  return found != names_.end() ? found->second : PropertyKey{.id = id};
}

Properties StoreObjects::ReadProperties(const ndb::NodeTrees& trees) const {
  auto context = ltp::PropertyContext::Open(*reader_, trees);
  Properties properties;
  for (const PropertyRecord& record : context.Records()) {
    properties[KeyOf(record.wPropId)] = {record.wPropType, context.Read(record.Tag()).value()};
  }
  return properties;
}

ltp::TableContext StoreObjects::OpenTable(const ndb::NodeTrees& trees) const {
  return ltp::TableContext::Open(*reader_, trees);
}

Properties StoreObjects::ReadRow(ltp::TableContext& table, std::size_t row) const {
  Properties cells;
  for (const ltp::Column& column : table.Columns()) {
    if (auto cell = table.Cell(row, column.tag)) {
      cells[KeyOf(IdOf(column.tag))] = {TypeOf(column.tag), std::move(*cell)};
    }
  }
  return cells;
}

RawNode StoreObjects::ReadNode(const ndb::NodeTrees& trees) const {
  RawNode node;
  auto data = ndb::DataTreeReader::Open(*reader_, trees.bidData);
  node.data = data.ReadAll(kMostBytes);
  for (const ndb::SubnodeEntry& entry : ndb::ListSubnodes(*reader_, trees.bidSub)) {
    node.parts[velmora::Value(entry.nid)] = ReadNode(entry.trees);
  }
  return node;
}

Attached StoreObjects::ReadAttached(const ndb::NodeTrees& trees) const {
  Attached attached{.properties = ReadProperties(trees)};
  const Value* value = Find(attached.properties, 0x3701);
  if (value == nullptr || value->type != PropType::kObject) return attached;
  const Nid nid{static_cast<std::uint32_t>(forge::Get(value->bytes, 0, 4))};
  const auto entry = ndb::FindSubnode(*reader_, trees.bidSub, nid);
  if (!entry) throw std::runtime_error("an object of an attachment is not among its sub-nodes");
  if (TypeOf(nid) == NidType::kNormalMessage) {
    attached.embedded = std::make_shared<Item>(ReadItem(entry->trees));
  } else {
    attached.object = ReadNode(entry->trees);
  }
  return attached;
}

Item StoreObjects::ReadItem(const ndb::NodeTrees& trees) const {
  Item item{.properties = ReadProperties(trees)};
  for (const ndb::SubnodeEntry& entry : ndb::ListSubnodes(*reader_, trees.bidSub)) {
    if (entry.nid == nid::kRecipientTable) {
      auto table = OpenTable(entry.trees);
      for (std::size_t row = 0; row < table.RowCount(); ++row) item.recipients.push_back(ReadRow(table, row));
    } else if (TypeOf(entry.nid) == NidType::kAttachment) {
      item.attachments.push_back(ReadAttached(entry.trees));
    }
  }
  return item;
}

Properties StoreObjects::PropertiesOf(Nid nid) const { return ReadProperties(reader_->FindNode(nid).value().trees); }
Item StoreObjects::ItemOf(Nid nid) const { return ReadItem(reader_->FindNode(nid).value().trees); }

std::vector<Nid> StoreObjects::RowIds(Nid nid) const {
  std::vector<Nid> ids;
  const auto node = reader_->FindNode(nid);
  if (!node) return ids;
  const auto table = OpenTable(node->trees);
  for (std::size_t row = 0; row < table.RowCount(); ++row) ids.push_back(Nid{table.RowId(row)});
  return ids;
}

FolderObject StoreObjects::FolderOf(Nid nid) const {
  return {.parent = reader_->FindNode(nid).value().nidParent,
          .properties = PropertiesOf(nid),
          .messages = RowIds(Sibling(nid, NidType::kContentsTable)),
          .associated = RowIds(Sibling(nid, NidType::kAssocContentsTable)),
          .folders = RowIds(Sibling(nid, NidType::kHierarchyTable))};
}

std::map<std::u16string, Nid> StoreObjects::Folders() const {
  std::map<Nid, std::u16string> paths = {{nid::kRootFolder, u""}};
  std::multimap<Nid, const ndb::NodeEntry*> byParent;
  for (const ndb::NodeEntry& node : reader_->Nodes()) {
    const bool isFolder = TypeOf(node.nid) == NidType::kNormalFolder || TypeOf(node.nid) == NidType::kSearchFolder;
    if (isFolder && node.nid != node.nidParent) byParent.emplace(node.nidParent, &node);
  }
  std::map<std::u16string, Nid> folders;
  std::vector<Nid> open = {nid::kRootFolder};
  while (!open.empty()) {
    const Nid parent = open.back();
    open.pop_back();
    const auto [begin, end] = byParent.equal_range(parent);
    for (auto child = begin; child != end; ++child) {
      const std::u16string path = paths.at(parent) + u"/" + TextOf(PropertiesOf(child->second->nid), 0x3001);
      if (!folders.emplace(path, child->second->nid).second) throw std::runtime_error("two folders of one path");
      paths[child->second->nid] = path;
      open.push_back(child->second->nid);
    }
  }
  return folders;
}

std::vector<Nid> StoreObjects::Messages() const {
  std::vector<Nid> messages;
  for (const ndb::NodeEntry& node : reader_->Nodes()) {
    if (TypeOf(node.nid) == NidType::kNormalMessage || TypeOf(node.nid) == NidType::kAssocMessage) {
      messages.push_back(node.nid);
    }
  }
  return messages;
}

Properties StoreObjects::RowOf(Nid table, Nid nid) const {
  auto rows = OpenTable(reader_->FindNode(table).value().trees);
  return ReadRow(rows, rows.FindRow(velmora::Value(nid)).value());
}

PropertyKey KeyOf(const forge::Property& property) {
  if (!property.name) return {.id = property.id};
  return {.set = forge::SetGuid(property.name->set), .number = property.name->number, .text = property.name->text};
}

Value ValueOf(const forge::Property& property) { return {static_cast<PropType>(property.type), property.data}; }

const Value* Find(const Properties& properties, std::uint16_t id) {
  const auto found = properties.find({.id = id});
  return found != properties.end() ? &found->second : nullptr;
}

const Value* Find(const Properties& properties, forge::PropertySet set, std::uint32_t number) {
  const auto found = properties.find({.set = forge::SetGuid(set), .number = number});
  return found != properties.end() ? &found->second : nullptr;
}

std::uint64_t NumberOf(const Properties& properties, std::uint16_t id) {
  const Value* value = Find(properties, id);
  if (value == nullptr || value->bytes.size() > 8) throw std::runtime_error("no such number");
  return value->bytes.empty() ? 0 : forge::Get(value->bytes, 0, value->bytes.size());
}

std::u16string TextOf(const Properties& properties, std::uint16_t id) {
  const Value* value = Find(properties, id);
  if (value != nullptr && value->type == PropType::kString) return FromUtf16(value->bytes);
  if (value == nullptr || value->type != PropType::kString8) throw std::runtime_error("no such text");
  std::u16string text;
  for (const std::byte b : value->bytes) text.push_back(static_cast<char16_t>(b));
  return text;
}

void PrintTo(const PropertyKey& key, std::ostream* out) {
  *out << "0x" << std::hex << std::setfill('0') << std::setw(4);
  if (key.set.empty()) {
    *out << key.id;
    return;
  }
  *out << key.number << " ";
  for (const char16_t c : key.text) *out << static_cast<char>(c);
  *out << " of a set that begins with " << std::setw(8) << forge::Get(key.set, 0, 4);
}

void PrintTo(const Value& value, std::ostream* out) {
  *out << "type 0x" << std::hex << std::setfill('0') << std::setw(4) << static_cast<unsigned>(value.type) << std::dec
       << ", " << value.bytes.size() << " bytes:" << std::hex;
  for (std::size_t i = 0; i < std::min<std::size_t>(value.bytes.size(), 32); ++i) {
    *out << " " << std::setw(2) << static_cast<unsigned>(value.bytes[i]);
  }
}

}  // namespace velmora::complete
