// Properties that have a name instead of an identifier of their own: a set (a GUID) and in it a number or
// a text. A store maps each to an identifier from 0x8000 up in its node 0x61.
//
// The stores that this layer writes all have the same map, the table below in its order, so that a named
// property has a fixed tag here (Named). In a store that is read it may have another (NamedPropertyMap).
#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "store/format/name_map.h"
#include "store/format/prop_tag.h"
#include "store/ltp/property_context.h"
#include "store/ltp/property_context_writer.h"
#include "store/messaging/values/identity.h"
#include "text/text.h"

namespace velmora::messaging {

enum class PropertySet : std::uint8_t { kPublicStrings, kCommon, kAddress, kAppointment, kTask, kLog, kNote };

struct PropertyName {
  PropertySet set;
  std::uint16_t id;  ///< 0 for the one that is named by a text
};

/// The text name in kPublicStrings.
inline constexpr char16_t kKeywordsName[] = u"Keywords";

// clang-format off
inline constexpr PropertyName kPropertyNames[] = {
    {PropertySet::kPublicStrings, 0},
    {PropertySet::kCommon, 0x8501}, {PropertySet::kCommon, 0x8502}, {PropertySet::kCommon, 0x8503},
    {PropertySet::kCommon, 0x8506}, {PropertySet::kCommon, 0x850E}, {PropertySet::kCommon, 0x8510},
    {PropertySet::kCommon, 0x8516}, {PropertySet::kCommon, 0x8517}, {PropertySet::kCommon, 0x8518},
    {PropertySet::kCommon, 0x851C}, {PropertySet::kCommon, 0x8530}, {PropertySet::kCommon, 0x8534},
    {PropertySet::kCommon, 0x8535}, {PropertySet::kCommon, 0x8539}, {PropertySet::kCommon, 0x8560},
    {PropertySet::kCommon, 0x85A4},
    {PropertySet::kAddress, 0x8005}, {PropertySet::kAddress, 0x8006}, {PropertySet::kAddress, 0x8015},
    {PropertySet::kAddress, 0x801A}, {PropertySet::kAddress, 0x801B}, {PropertySet::kAddress, 0x801C},
    {PropertySet::kAddress, 0x8022}, {PropertySet::kAddress, 0x8028}, {PropertySet::kAddress, 0x8029},
    {PropertySet::kAddress, 0x802B}, {PropertySet::kAddress, 0x802C}, {PropertySet::kAddress, 0x802D},
    {PropertySet::kAddress, 0x802E}, {PropertySet::kAddress, 0x8045}, {PropertySet::kAddress, 0x8046},
    {PropertySet::kAddress, 0x8047}, {PropertySet::kAddress, 0x8048}, {PropertySet::kAddress, 0x8049},
    {PropertySet::kAddress, 0x804A}, {PropertySet::kAddress, 0x804F}, {PropertySet::kAddress, 0x8050},
    {PropertySet::kAddress, 0x8051}, {PropertySet::kAddress, 0x8052}, {PropertySet::kAddress, 0x8053},
    {PropertySet::kAddress, 0x8062},
    {PropertySet::kAddress, 0x8080}, {PropertySet::kAddress, 0x8082}, {PropertySet::kAddress, 0x8083},
    {PropertySet::kAddress, 0x8084}, {PropertySet::kAddress, 0x8085},
    {PropertySet::kAddress, 0x8090}, {PropertySet::kAddress, 0x8092}, {PropertySet::kAddress, 0x8093},
    {PropertySet::kAddress, 0x8094}, {PropertySet::kAddress, 0x8095},
    {PropertySet::kAddress, 0x80A0}, {PropertySet::kAddress, 0x80A2}, {PropertySet::kAddress, 0x80A3},
    {PropertySet::kAddress, 0x80A4}, {PropertySet::kAddress, 0x80A5},
    {PropertySet::kAddress, 0x80D8}, {PropertySet::kAddress, 0x80DE}, {PropertySet::kAddress, 0x80DF},
    {PropertySet::kAppointment, 0x8205}, {PropertySet::kAppointment, 0x8208}, {PropertySet::kAppointment, 0x820D},
    {PropertySet::kAppointment, 0x820E}, {PropertySet::kAppointment, 0x8213}, {PropertySet::kAppointment, 0x8215},
    {PropertySet::kAppointment, 0x8217}, {PropertySet::kAppointment, 0x8218}, {PropertySet::kAppointment, 0x8223},
    {PropertySet::kTask, 0x8101}, {PropertySet::kTask, 0x8102}, {PropertySet::kTask, 0x8103},
    {PropertySet::kTask, 0x8104}, {PropertySet::kTask, 0x8105}, {PropertySet::kTask, 0x8108},
    {PropertySet::kTask, 0x810F}, {PropertySet::kTask, 0x8113}, {PropertySet::kTask, 0x811C},
    {PropertySet::kTask, 0x811F}, {PropertySet::kTask, 0x8126}, {PropertySet::kTask, 0x8129},
    {PropertySet::kTask, 0x812F},
    {PropertySet::kLog, 0x8700}, {PropertySet::kLog, 0x8706}, {PropertySet::kLog, 0x8707},
    {PropertySet::kLog, 0x8708}, {PropertySet::kLog, 0x870C}, {PropertySet::kLog, 0x870E},
    {PropertySet::kLog, 0x870F}, {PropertySet::kLog, 0x8710}, {PropertySet::kLog, 0x8711},
    {PropertySet::kLog, 0x8712},
    {PropertySet::kNote, 0x8B00}, {PropertySet::kNote, 0x8B02}, {PropertySet::kNote, 0x8B03},
};
// clang-format on
inline constexpr std::size_t kPropertyNameCount = std::size(kPropertyNames);

/// Tag of a named property in the stores that this layer writes. A name that the table lacks does not compile.
consteval PropTag Named(PropertySet set, std::uint16_t id, PropType type) {
  for (std::size_t i = 0; i < kPropertyNameCount; ++i) {
    if (kPropertyNames[i].set == set && kPropertyNames[i].id == id) {
      return MakeTag(static_cast<std::uint16_t>(name_map::kFirstNamedId + i), type);
    }
  }
  throw "no such name in kPropertyNames";
}

// Those that items of several kinds have.
inline constexpr PropTag kSideEffects = Named(PropertySet::kCommon, 0x8510, PropType::kInteger32);
inline constexpr PropTag kCommonStart = Named(PropertySet::kCommon, 0x8516, PropType::kTime);
inline constexpr PropTag kCommonEnd = Named(PropertySet::kCommon, 0x8517, PropType::kTime);

/// A name in any set, as another store may have it.
struct AnyPropertyName {
  Uid set{};
  std::uint32_t number = 0;
  text::Text text;  ///< of a name that is a text; empty for one that is a number
  auto operator<=>(const AnyPropertyName&) const = default;
};

/// A name and the identifier that a store has given to it.
struct IdentifiedName {
  std::uint16_t id = 0;
  AnyPropertyName name;
};

/// Whether it is a set that every store knows: one of the table.
bool IsPublishedSet(const Uid& set);

/// All names of the map that node 0x61 of a store holds, in its order. Entries that cannot be read are left out.
std::vector<IdentifiedName> ReadNames(ltp::PropertyContext& node);

/// The map of a store that is written: the names of the table and behind them those that were asked for.
class NewNameMap {
 public:
  NewNameMap();

  /// The identifier of a name, from name_map::kFirstNamedId up; a name that has none gets the next one. Nothing when
  /// all 32766 are used up.
  std::optional<std::uint16_t> IdOf(const AnyPropertyName& name);

  std::size_t Count() const { return names_.size(); }

  /// Bytes that the node takes in the file at most.
  std::uint64_t MostBytes() const { return 8192 + names_.size() * 48 + 2 * textBytes_; }

  /// Adds the properties of node 0x61: the sets, the names in order, and the names again by 251 hash buckets.
  void AddTo(ltp::PropertyContextWriter& node) const;

 private:
  std::uint16_t NumberOf(const Uid& set);

  std::vector<Uid> sets_;
  std::vector<std::pair<std::uint16_t, AnyPropertyName>> names_;  ///< each with the number of its set
  std::map<AnyPropertyName, std::uint16_t> ids_;
  std::uint64_t textBytes_ = 0;
};

/// Which identifiers a store that is read gives to the names of the table.
class NamedPropertyMap {
 public:
  /// The map of the stores that this layer writes.
  NamedPropertyMap();

  /// The map that node 0x61 of a store holds. Entries that cannot be read give no identifier.
  explicit NamedPropertyMap(ltp::PropertyContext& node);

  /// The store's tag for a tag as Named gives it, or one without a name, which is the same in every store;
  /// 0 when the store has no such name.
  PropTag InStore(PropTag tag) const;

 private:
  std::array<std::uint16_t, kPropertyNameCount> ids_{};  ///< 0 for none
};

}  // namespace velmora::messaging
