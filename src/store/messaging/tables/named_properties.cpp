#include "store/messaging/tables/named_properties.h"

#include <algorithm>
#include <map>
#include <vector>

#include "store/format/little_endian.h"
#include "store/messaging/tables/name_streams.h"

namespace velmora::messaging {
namespace {

struct SetRow {
  PropertySet set;
  Uid guid;
};

constexpr SetRow kSets[] = {
    {PropertySet::kPublicStrings, kPublicStringsSet}, {PropertySet::kCommon, SetOf(0x00062008)},
    {PropertySet::kAddress, SetOf(0x00062004)},       {PropertySet::kAppointment, SetOf(0x00062002)},
    {PropertySet::kTask, SetOf(0x00062003)},          {PropertySet::kLog, SetOf(0x0006200A)},
    {PropertySet::kNote, SetOf(0x0006200E)},
};

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
  if (set == kPublicStringsSet) return kPublicStringsNumber;
  const auto found = std::ranges::find(sets_, set);
  const auto number = static_cast<std::uint16_t>(kFirstSetNumber + (found - sets_.begin()));
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
      hash = HashOfName(name.text);
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

bool IsPublishedSet(const Uid& set) { return std::ranges::find(kSets, set, &SetRow::guid) != std::end(kSets); }

std::vector<IdentifiedName> ReadNames(ltp::PropertyContext& node) {
  const Bytes sets = node.Binary(name_map::kSetStream).value_or(Bytes());
  const Bytes entries = node.Binary(name_map::kEntryStream).value_or(Bytes());
  const Bytes texts = node.Binary(name_map::kTextStream).value_or(Bytes());
  std::vector<IdentifiedName> names;
  for (const NameEntry& entry : ReadNameEntries(entries)) {
    const auto id = static_cast<std::uint16_t>(name_map::kFirstNamedId + entry.index);
    const std::optional<Uid> set = SetOfNumber(sets, entry.SetNumber());
    if (!set || id < name_map::kFirstNamedId) continue;
    AnyPropertyName name{*set, entry.IsText() ? 0 : entry.number,
                         entry.IsText() ? NameTextAt(texts, entry.number) : text::Text()};
    if (entry.IsText() && name.text.empty()) continue;
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
