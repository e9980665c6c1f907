// The objects of a store as plain values, so that those of two stores can be compared: what a property is known by does
// not depend on the store that it stands in.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "forge/property.h"
#include "platform/memory_file.h"
#include "store/format/prop_tag.h"
#include "store/ltp/property_context.h"
#include "store/ltp/table_context.h"
#include "store/ndb/store_reader.h"

namespace velmora::complete {

using forge::Bytes;

/// An identifier below 0x8000 or, of a named property, its set and in it a number or a text.
struct PropertyKey {
  std::uint16_t id = 0;
  Bytes set = {};
  std::uint32_t number = 0;
  std::u16string text = {};
  friend auto operator<=>(const PropertyKey&, const PropertyKey&) = default;
};

/// The bytes as they stand in the store; of an object its 8 bytes, see Attached.
struct Value {
  PropType type = PropType::kInteger32;
  Bytes bytes = {};
  friend bool operator==(const Value&, const Value&) = default;
};

using Properties = std::map<PropertyKey, Value>;

/// The node behind an object of another program.
struct RawNode {
  Bytes data;
  std::map<std::uint32_t, RawNode> parts;  ///< by node id
  friend bool operator==(const RawNode&, const RawNode&) = default;
};

struct Item;

struct Attached {
  Properties properties;
  std::shared_ptr<const Item> embedded = {};
  std::optional<RawNode> object = {};
};

struct Item {
  Properties properties;
  std::vector<Properties> recipients = {};  ///< by ascending row id
  std::vector<Attached> attachments = {};   ///< by ascending node id
};

struct FolderObject {
  Nid parent{};
  Properties properties;
  std::vector<Nid> messages;    ///< of the contents table
  std::vector<Nid> associated;  ///< of the table of hidden messages
  std::vector<Nid> folders;     ///< of the hierarchy table, in the order of its rows
};

/// A whole store, read back. Whatever cannot be read raises.
class StoreObjects {
 public:
  explicit StoreObjects(Bytes bytes);

  const Bytes& File() const { return file_.Bytes(); }
  const platform::ByteSource& Source() const { return file_; }
  const ndb::StoreReader& Reader() const { return *reader_; }

  bool Has(Nid nid) const { return reader_->FindNode(nid).has_value(); }
  Properties PropertiesOf(Nid nid) const;
  Item ItemOf(Nid nid) const;

  /// With the rows of its tables, which a store that was forged without any does not have.
  FolderObject FolderOf(Nid nid) const;

  /// Path below the root to id, each name behind a slash; the root is "".
  std::map<std::u16string, Nid> Folders() const;

  /// The messages of all folders that are no search folders, hidden ones too, by ascending id.
  std::vector<Nid> Messages() const;

  /// The row of a message or folder in a table of its folder.
  Properties RowOf(Nid table, Nid nid) const;

 private:
  void ReadNames();
  PropertyKey KeyOf(std::uint16_t id) const;
  Properties ReadProperties(const ndb::NodeTrees& trees) const;
  Item ReadItem(const ndb::NodeTrees& trees) const;
  Attached ReadAttached(const ndb::NodeTrees& trees) const;
  RawNode ReadNode(const ndb::NodeTrees& trees) const;
  ltp::TableContext OpenTable(const ndb::NodeTrees& trees) const;
  Properties ReadRow(ltp::TableContext& table, std::size_t row) const;
  std::vector<Nid> RowIds(Nid table) const;

  platform::MemoryFile file_;
  std::unique_ptr<ndb::StoreReader> reader_;
  std::map<std::uint16_t, PropertyKey> names_;
};

/// What a forged property is known by, and its value where texts are UTF-16.
PropertyKey KeyOf(const forge::Property& property);
Value ValueOf(const forge::Property& property);

/// The value of a property; null where it is not there.
const Value* Find(const Properties& properties, std::uint16_t id);
const Value* Find(const Properties& properties, forge::PropertySet set, std::uint32_t number);

/// A number, a text of a property that has to be there with that type; else it raises.
std::uint64_t NumberOf(const Properties& properties, std::uint16_t id);
std::u16string TextOf(const Properties& properties, std::uint16_t id);

void PrintTo(const PropertyKey& key, std::ostream* out);
void PrintTo(const Value& value, std::ostream* out);

}  // namespace velmora::complete
