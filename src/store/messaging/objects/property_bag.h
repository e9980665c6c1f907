// The properties of one object on their way into its property context and into the rows that copy them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "store/format/prop_tag.h"
#include "store/ltp/property_context_writer.h"
#include "store/ltp/table_context_writer.h"
#include "text/calendar.h"
#include "text/text.h"

namespace velmora::messaging {

/// A size for a property of 32 bits. Readers take its number for a signed one: of what is larger, the largest.
constexpr std::int32_t Size32(std::uint64_t bytes) {
  return static_cast<std::int32_t>(std::min<std::uint64_t>(bytes, std::numeric_limits<std::int32_t>::max()));
}

/// A value that the store holds already: a data tree, or the node of an object. Properties share it, it is not copied;
/// though nothing in the store refers to it, it is kept as long as this lives, which must go before the store does.
class StoredValue {
 public:
  /// `nid` is the id of an object's node; without one the object that refers to it gives it a free one.
  StoredValue(ndb::NdbWriter& ndb, const ndb::WrittenNode& node, std::optional<Nid> nid = {})
      : ndb_(ndb), node_(node), nid_(nid) {
    ndb_.Hold(node_.trees);
  }
  ~StoredValue() { ndb_.LetGo(node_.trees); }
  StoredValue(const StoredValue&) = delete;
  StoredValue& operator=(const StoredValue&) = delete;

  const ndb::WrittenNode& Node() const { return node_; }
  std::optional<Nid> Id() const { return nid_; }

 private:
  ndb::NdbWriter& ndb_;
  ndb::WrittenNode node_;
  std::optional<Nid> nid_;
};

/// Holds each property once: putting one of an identifier that is there replaces it. Values are bytes as the store
/// holds them (PropertyContextWriter says how), but for those that are stored already.
class PropertyBag {
 public:
  /// Puts a text in its storable form; an empty one is not put, and takes away what was there.
  void PutText(PropTag tag, text::TextView text);

  /// The same, cut to 255 UTF-16 units and with blanks in place of control characters, as names are.
  void PutName(PropTag tag, text::TextView text);

  /// Texts as a multiple value; none are not put.
  void PutTexts(PropTag tag, const std::vector<text::Text>& texts);

  void PutInteger16(PropTag tag, std::int16_t value) { PutNumber(tag, static_cast<std::uint16_t>(value), 2); }
  void PutInteger32(PropTag tag, std::int32_t value) { PutNumber(tag, static_cast<std::uint32_t>(value), 4); }
  void PutBoolean(PropTag tag, bool value) { PutNumber(tag, value ? 1 : 0, 1); }
  void PutTime(PropTag tag, text::FileTime value) { PutNumber(tag, value, 8); }
  void PutFloating64(PropTag tag, double value);
  void PutBytes(PropTag tag, std::span<const std::byte> bytes);
  void PutIntegers32(PropTag tag, std::span<const std::int32_t> values) { PutBytes(tag, std::as_bytes(values)); }

  /// A large value, or the node of a property of type kObject; never null.
  void PutStored(PropTag tag, std::shared_ptr<const StoredValue> value);

  /// Puts all properties of another bag.
  void Put(const PropertyBag& other);

  void Remove(PropTag tag);
  bool Has(PropTag tag) const { return Find(tag) != nullptr; }

  /// The tag under which a property of the same identifier is there.
  std::optional<PropTag> TagOf(PropTag tag) const;

  /// The value of a property, valid until the next change; empty when it is not there or stored already.
  std::span<const std::byte> Value(PropTag tag) const;
  std::int32_t Integer32(PropTag tag) const;

  std::size_t Count() const { return entries_.size(); }

  /// Bytes of all values that are not stored already.
  std::size_t ValueBytes() const;

  /// All properties in order of putting but for values stored already, valid until the next change.
  std::vector<ltp::PropertyView> Views() const;

  /// Adds all of them to a property context.
  void AddTo(ltp::PropertyContextWriter& node) const;

 private:
  struct Entry {
    PropTag tag;
    std::size_t offset;
    std::size_t size;
    std::shared_ptr<const StoredValue> stored;  ///< in place of bytes
  };

  void Reserve();
  void PutNumber(PropTag tag, std::uint64_t value, std::size_t size);
  const Entry* Find(PropTag tag) const;

  std::vector<Entry> entries_;
  std::vector<std::byte> values_;  ///< of replaced properties too
  std::uint16_t highestId_ = 0;    ///< that was ever put: most bags are filled in ascending order
};

}  // namespace velmora::messaging
