#include "store/messaging/tables/named_properties.h"

#include <algorithm>
#include <map>
#include <vector>

#include "store/format/checksum.h"
#include "store/format/little_endian.h"
#include "store/ltp/multi_value.h"

namespace velmora::messaging {
namespace {

/// The sets of the published kind {0006wxyz-0000-0000-C000-000000000046}, and those of the same tail.
constexpr Uid SetOf(std::uint32_t data1) {
  Uid set{};
  for (std::size_t i = 0; i < sizeof data1; ++i) set[i] = static_cast<std::byte>(data1 >> (8 * i));
  set[8] = std::byte{0xC0};
  set[15] = std::byte{0x46};
  return set;
}

struct SetRow {
  PropertySet set;
  Uid guid;
};

constexpr SetRow kSets[] = {
    {PropertySet::kPublicStrings, SetOf(0x00020329)}, {PropertySet::kCommon, SetOf(0x00062008)},
    {PropertySet::kAddress, SetOf(0x00062004)},       {PropertySet::kAppointment, SetOf(0x00062002)},
    {PropertySet::kTask, SetOf(0x00062003)},          {PropertySet::kLog, SetOf(0x0006200A)},
    {PropertySet::kNote, SetOf(0x0006200E)},
};

// The map names three sets by fixed numbers, no set at all among them; the stream of sets counts on from kFirstSet.
constexpr Uid kNoSet{};
constexpr Uid kMapiSet = SetOf(0x00020328);
constexpr std::uint16_t kPublicStringsNumber = 2;
constexpr std::uint16_t kFirstSet = 3;
constexpr std::size_t kMostNames = 0x7FFE;

constexpr std::uint32_t kBuckets = 251;

AnyPropertyName FullName(const PropertyName& name) {
  const Uid& set = kSets[static_cast<std::size_t>(name.set)].guid;  // kSets stands in order of PropertySet
  return name.id == 0 ? AnyPropertyName{set, 0, kKeywordsName} : AnyPropertyName{set, name.id, {}};
}

void AppendEntry(Bytes& out, std::uint32_t number, std::uint16_t setAndKind, std::size_t index) {
  Append(out, number);
  Append(out, setAndKind);
  Append(out, static_cast<std::uint16_t>(index));
}

}  // namespace

NewNameMap::NewNameMap() {
  for (const SetRow& row : kSets) NumberOf(row.guid);
  for (const PropertyName& name : kPropertyNames) IdOf(FullName(name));
}

std::uint16_t NewNameMap::NumberOf(const Uid& set) {
  if (set == kNoSet) return 0;
  if (set == kMapiSet) return 1;
  if (set == kSets[0].guid) return kPublicStringsNumber;
  const auto found = std::ranges::find(sets_, set);
  const auto number = static_cast<std::uint16_t>(kFirstSet + (found - sets_.begin()));
  if (found == sets_.end()) sets_.push_back(set);
  return number;
}

std::optional<std::uint16_t> NewNameMap::IdOf(const AnyPropertyName& name) {
  if (const auto found = ids_.find(name); found != ids_.end()) return found->second;
  if (names_.size() == kMostNames) return std::nullopt;
  const auto id = static_cast<std::uint16_t>(name_map::kFirstNamedId + names_.size());
  names_.emplace_back(NumberOf(name.set), name);
  ids_.emplace(name, id);
  textBytes_ += name.text.size() * sizeof(char16_t);
  return id;
}

void NewNameMap::AddTo(ltp::PropertyContextWriter& node) const {
  Bytes sets;
  for (const Uid& set : sets_) Append(sets, set);
  Bytes strings;
  Bytes entries;
  std::map<std::uint16_t, Bytes> buckets;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    const auto& [set, name] = names_[i];
    const bool byText = !name.text.empty();
    const auto setAndKind = static_cast<std::uint16_t>(set << 1 | (byText ? 1 : 0));
    // The stream holds the place of a text name, the bucket its hash.
    std::uint32_t hash = name.number;
    AppendEntry(entries, byText ? static_cast<std::uint32_t>(strings.size()) : name.number, setAndKind, i);
    if (byText) {
      hash = WeakCrc(std::as_bytes(std::span(name.text)));
      Append(strings, static_cast<std::uint32_t>(name.text.size() * sizeof(char16_t)));
      Append(strings, std::as_bytes(std::span(name.text)));
      strings.resize((strings.size() + 3) / 4 * 4);
    }
    const auto bucket = static_cast<std::uint16_t>(name_map::kFirstBucket + (hash ^ setAndKind) % kBuckets);
    AppendEntry(buckets[bucket], hash, setAndKind, i);
  }

  node.AddInteger32(name_map::kBucketCount, kBuckets);
  node.Add(name_map::kSetStream, sets);
  node.Add(name_map::kEntryStream, entries);
  node.Add(name_map::kTextStream, strings);
  for (auto& [bucket, bytes] : buckets) node.Add(MakeTag(bucket, PropType::kBinary), bytes);
}

NamedPropertyMap::NamedPropertyMap() {
  for (std::size_t i = 0; i < ids_.size(); ++i) ids_[i] = static_cast<std::uint16_t>(name_map::kFirstNamedId + i);
}

std::vector<IdentifiedName> ReadNames(ltp::PropertyContext& node) {
  const Bytes sets = node.Binary(name_map::kSetStream).value_or(Bytes());
  const Bytes entries = node.Binary(name_map::kEntryStream).value_or(Bytes());
  const Bytes texts = node.Binary(name_map::kTextStream).value_or(Bytes());
  const auto setOf = [&](std::uint32_t number) -> std::optional<Uid> {
    if (number == 0) return kNoSet;
    if (number == 1) return kMapiSet;
    if (number == kPublicStringsNumber) return kSets[0].guid;
    const std::size_t at = (number - kFirstSet) * name_map::kSetSize;
    if (at + name_map::kSetSize > sets.size()) return std::nullopt;
    Uid set;
    std::ranges::copy(std::span(sets).subspan(at, name_map::kSetSize), set.begin());
    return set;
  };
  const auto textAt = [&](std::size_t at) -> text::Text {
    const std::size_t size = Load<std::uint32_t>(texts, at);
    if (at + 4 > texts.size() || size > texts.size() - at - 4) return {};
    return ltp::DecodeText(std::span(texts).subspan(at + 4, size));
  };
  std::vector<IdentifiedName> names;
  for (std::size_t at = 0; at + name_map::kEntrySize <= entries.size(); at += name_map::kEntrySize) {
    const std::uint32_t number = Load<std::uint32_t>(entries, at);
    const std::uint32_t setAndKind = Load<std::uint16_t>(entries, at + 4);
    const auto id =
        static_cast<std::uint16_t>(name_map::kFirstNamedId + Load<std::uint16_t>(entries, at + name_map::kOffEntryId));
    const std::optional<Uid> set = setOf(setAndKind >> 1);
    if (!set || id < name_map::kFirstNamedId) continue;
    const bool byText = (setAndKind & 1) != 0;
    AnyPropertyName name{*set, byText ? 0 : number, byText ? textAt(number) : text::Text()};
    if (byText && name.text.empty()) continue;
    names.push_back({id, std::move(name)});
  }
  return names;
}

NamedPropertyMap::NamedPropertyMap(ltp::PropertyContext& node) {
  for (const auto& [id, name] : ReadNames(node)) {
    for (std::size_t i = 0; i < kPropertyNameCount; ++i) {
      if (FullName(kPropertyNames[i]) == name) ids_[i] = id;
    }
  }
}

PropTag NamedPropertyMap::InStore(PropTag tag) const {
  const std::uint16_t id = IdOf(tag);
  if (id < name_map::kFirstNamedId) return tag;
  const std::size_t index = id - name_map::kFirstNamedId;
  if (index >= ids_.size() || ids_[index] == 0) return 0;
  return MakeTag(ids_[index], TypeOf(tag));
}

}  // namespace velmora::messaging
