// Properties as values: what a property context or a table row is made of.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "forge/bytes.h"

namespace velmora::forge {

/// Property types of the format.
enum PropertyType : std::uint16_t {
  kInt16 = 0x0002,
  kInt32 = 0x0003,
  kFloat = 0x0004,
  kDouble = 0x0005,
  kCurrency = 0x0006,
  kFloatTime = 0x0007,
  kError = 0x000A,
  kBool = 0x000B,
  kObject = 0x000D,
  kInt64 = 0x0014,
  kString8 = 0x001E,
  kString = 0x001F,
  kTime = 0x0040,
  kGuid = 0x0048,
  kBinary = 0x0102,
  kString8List = 0x101E,
  kStringList = 0x101F,
  kBinaryList = 0x1102,
};

/// Where a value of variable length stands.
enum class Place {
  kAuto,   ///< in the heap up to 1024 bytes, else in a sub-node
  kHeap,   ///< in the heap, whatever its length
  kBlock,  ///< in a sub-node: one data block, or a chain if it is longer than one
  kChain,  ///< in a sub-node: a chain even of one piece
  kTree,   ///< in a sub-node: a chain of two levels, however short
};

/// The sets that named properties belong to.
enum class PropertySet : std::uint8_t {
  kMapi,
  kPublic,
  kCommon,
  kAddress,
  kAppointment,
  kTask,
  kLog,
  kNote,
  kMeeting,
  kHeaders,
  kOwn,  ///< of a program that nobody has heard of
};

/// The long name of a named property: a number or, if `text` is not empty, a text.
struct PropertyName {
  PropertySet set = PropertySet::kCommon;
  std::uint32_t number = 0;
  std::u16string text = {};
};

struct Property {
  std::uint16_t id = 0;
  std::uint16_t type = kInt32;
  Bytes data = {};  ///< the value; texts as UTF-16
  Place place = Place::kAuto;
  bool textOfStore = false;                       ///< a text or list of texts that becomes 8-bit in an ANSI store
  std::optional<std::uint32_t> reference = {};    ///< stands in the record as it is, no value is stored
  std::optional<std::uint64_t> tree = {};         ///< the block id of a value that is in the store already
  std::shared_ptr<const PropertyName> name = {};  ///< the id comes from the name-to-id map
};

using PropertyList = std::vector<Property>;

/// A list of given properties, none of which is copied: braces would.
template <class... Properties>
PropertyList ListOf(Properties&&... properties) {
  PropertyList list;
  list.reserve(sizeof...(properties));
  (list.push_back(std::forward<Properties>(properties)), ...);
  return list;
}

/// A time of the format: 100 ns since 1601, UTC.
using FileTime = std::uint64_t;
FileTime TimeOf(int year, unsigned month, unsigned day, unsigned hour = 0, unsigned minute = 0, unsigned second = 0);

Property Int16(std::uint16_t id, std::uint16_t value);
Property Int32(std::uint16_t id, std::uint32_t value);
Property Int64(std::uint16_t id, std::uint64_t value);
Property Bool(std::uint16_t id, bool value);
Property Double(std::uint16_t id, double value);
Property Time(std::uint16_t id, FileTime value);
Property Guid(std::uint16_t id, Bytes sixteen);
Property Binary(std::uint16_t id, Bytes value, Place place = Place::kAuto);

/// A text in the store's own width: 001F, or 001E in an ANSI store.
Property Text(std::uint16_t id, std::u16string_view value, Place place = Place::kAuto);
Property Texts(std::uint16_t id, const std::vector<std::u16string>& values, Place place = Place::kAuto);

/// 8-bit text (001E) and UTF-16 text (001F), whatever the store is.
Property Text8(std::uint16_t id, std::string_view value, Place place = Place::kAuto);
Property Text16(std::uint16_t id, std::u16string_view value, Place place = Place::kAuto);

/// Any type and bytes; up to 4 bytes of a type that stands in the record go there.
Property Raw(std::uint16_t id, std::uint16_t type, Bytes value, Place place = Place::kAuto);

/// Several binary values.
Property Binaries(std::uint16_t id, const std::vector<Bytes>& values, Place place = Place::kAuto);

/// A value that is in the store already, as Store::AddData or AddChain put it there: of any length.
Property Stored(std::uint16_t id, std::uint16_t type, std::uint64_t tree);

/// A record whose value word is `value`, true or not.
Property Reference(std::uint16_t id, std::uint16_t type, std::uint32_t value);

/// The property under a long name in place of an id.
Property Named(PropertySet set, std::uint32_t number, Property property);
Property Named(PropertySet set, std::u16string_view text, Property property);

/// True for a type whose value stands in the record itself.
bool IsInline(std::uint16_t type);

/// Type and bytes as they stand in a store of that width. The bytes are those of the property, or of `room`, which gets
/// them where they differ.
std::uint16_t StoredType(const Property& property, bool wide);
const Bytes& StoredData(const Property& property, bool wide, Bytes& room);

/// The property of that id, null if there is none.
const Property* Find(const PropertyList& properties, std::uint16_t id);
Property* Find(PropertyList& properties, std::uint16_t id);

/// Replaces the property of the same id, or appends.
void Set(PropertyList& properties, Property property);

}  // namespace velmora::forge
