#include "store/messaging/tables/named_properties.h"

#include <algorithm>
#include <map>
#include <vector>

#include "store/format/checksum.h"
#include "store/messaging/values/byte_writer.h"

namespace velmora::messaging {
namespace {

using Guid = std::array<std::uint8_t, 16>;

/// The sets of the published kind {0006wxyz-0000-0000-C000-000000000046}, and those of the same tail.
constexpr Guid GuidOf(std::uint32_t data1) {
  return {static_cast<std::uint8_t>(data1),
          static_cast<std::uint8_t>(data1 >> 8),
          static_cast<std::uint8_t>(data1 >> 16),
          static_cast<std::uint8_t>(data1 >> 24),
          0,
          0,
          0,
          0,
          0xC0,
          0,
          0,
          0,
          0,
          0,
          0,
          0x46};
}

struct SetRow {
  PropertySet set;
  Guid guid;
};

constexpr SetRow kSets[] = {
    {PropertySet::kPublicStrings, GuidOf(0x00020329)}, {PropertySet::kCommon, GuidOf(0x00062008)},
    {PropertySet::kAddress, GuidOf(0x00062004)},       {PropertySet::kAppointment, GuidOf(0x00062002)},
    {PropertySet::kTask, GuidOf(0x00062003)},          {PropertySet::kLog, GuidOf(0x0006200A)},
    {PropertySet::kNote, GuidOf(0x0006200E)},
};

// The map names two sets by fixed numbers; the GUID stream counts on from kFirstGuid.
constexpr std::uint16_t kPublicStringsGuid = 2;
constexpr std::uint16_t kFirstGuid = 3;

constexpr PropTag kBucketCount = 0x00010003;
constexpr PropTag kGuidStream = 0x00020102;
constexpr PropTag kEntryStream = 0x00030102;
constexpr PropTag kStringStream = 0x00040102;
constexpr std::uint16_t kFirstBucket = 0x1000;
constexpr std::uint32_t kBuckets = 251;
constexpr std::size_t kEntrySize = 8;
constexpr std::size_t kGuidSize = 16;

std::uint16_t GuidNumberOf(PropertySet set) {
  if (set == PropertySet::kPublicStrings) return kPublicStringsGuid;
  return static_cast<std::uint16_t>(kFirstGuid + static_cast<std::uint16_t>(set) -
                                    1);  // kSets stands in order of PropertySet
}

std::uint32_t HashOf(text::TextView name) { return WeakCrc(std::as_bytes(std::span(name))); }

void AppendEntry(ByteWriter& out, std::uint32_t number, std::uint16_t guidAndKind, std::size_t index) {
  out.U32(number);
  out.U16(guidAndKind);
  out.U16(static_cast<std::uint16_t>(index));
}

/// Bounded little-endian reading; beyond the end there are zeros.
std::uint32_t NumberAt(std::span<const std::byte> bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i) {
    value |= std::to_integer<std::uint32_t>(bytes[at + i]) << (8 * i);
  }
  return value;
}

}  // namespace

void AddNameMap(ltp::PropertyContextWriter& node) {
  ByteWriter guids;
  for (const SetRow& row : kSets) {
    if (row.set != PropertySet::kPublicStrings) guids.Raw(std::as_bytes(std::span(row.guid)));
  }
  const text::TextView keywords = kKeywordsName;
  ByteWriter strings;
  strings.U32(static_cast<std::uint32_t>(keywords.size() * sizeof(char16_t)));
  strings.Units(keywords);
  while (strings.Size() % 4 != 0) strings.U8(0);

  ByteWriter entries;
  std::map<std::uint16_t, ByteWriter> buckets;
  for (std::size_t i = 0; i < kPropertyNameCount; ++i) {
    const PropertyName& name = kPropertyNames[i];
    const bool byText = name.id == 0;
    const auto guidAndKind = static_cast<std::uint16_t>(GuidNumberOf(name.set) << 1 | (byText ? 1 : 0));
    // The stream holds the place of a text name, the bucket its hash; there is one text, at place 0.
    AppendEntry(entries, name.id, guidAndKind, i);
    const std::uint32_t hash = byText ? HashOf(keywords) : name.id;
    const auto bucket = static_cast<std::uint16_t>(kFirstBucket + (hash ^ guidAndKind) % kBuckets);
    AppendEntry(buckets[bucket], hash, guidAndKind, i);
  }

  node.AddInteger32(kBucketCount, kBuckets);
  node.Add(kGuidStream, guids.Take());
  node.Add(kEntryStream, entries.Take());
  node.Add(kStringStream, strings.Take());
  for (auto& [bucket, bytes] : buckets) node.Add(MakeTag(bucket, PropType::kBinary), bytes.Take());
}

NamedPropertyMap::NamedPropertyMap() {
  for (std::size_t i = 0; i < ids_.size(); ++i) ids_[i] = static_cast<std::uint16_t>(kFirstNamedId + i);
}

NamedPropertyMap::NamedPropertyMap(ltp::PropertyContext& node) {
  const Bytes guids = node.Binary(kGuidStream).value_or(Bytes());
  const Bytes entries = node.Binary(kEntryStream).value_or(Bytes());
  const Bytes strings = node.Binary(kStringStream).value_or(Bytes());
  const auto setOf = [&](std::uint32_t number) -> const SetRow* {
    if (number == kPublicStringsGuid) return &kSets[0];
    const std::size_t at = (number - kFirstGuid) * kGuidSize;
    if (number < kFirstGuid || at + kGuidSize > guids.size()) return nullptr;
    const auto guid = std::span(guids).subspan(at, kGuidSize);
    const auto* const found = std::ranges::find_if(
        kSets, [&](const SetRow& row) { return std::ranges::equal(guid, std::as_bytes(std::span(row.guid))); });
    return found != std::end(kSets) ? found : nullptr;
  };
  const auto isKeywords = [&](std::uint32_t at) {
    const auto name = std::as_bytes(std::span(text::TextView(kKeywordsName)));
    return NumberAt(strings, at, 4) == name.size() && at + 4 + name.size() <= strings.size() &&
           std::ranges::equal(std::span(strings).subspan(at + 4, name.size()), name);
  };
  for (std::size_t at = 0; at + kEntrySize <= entries.size(); at += kEntrySize) {
    const std::uint32_t number = NumberAt(entries, at, 4);
    const std::uint32_t guidAndKind = NumberAt(entries, at + 4, 2);
    const auto id = static_cast<std::uint16_t>(kFirstNamedId + NumberAt(entries, at + 6, 2));
    const SetRow* set = setOf(guidAndKind >> 1);
    if (set == nullptr || id < kFirstNamedId) continue;
    const bool byText = (guidAndKind & 1) != 0;
    for (std::size_t i = 0; i < kPropertyNameCount; ++i) {
      if (kPropertyNames[i].set != set->set || (kPropertyNames[i].id == 0) != byText) continue;
      if (byText ? isKeywords(number) : kPropertyNames[i].id == number) ids_[i] = id;
    }
  }
}

PropTag NamedPropertyMap::InStore(PropTag tag) const {
  const std::uint16_t id = IdOf(tag);
  if (id < kFirstNamedId) return tag;
  const std::size_t index = id - kFirstNamedId;
  if (index >= ids_.size() || ids_[index] == 0) return 0;
  return MakeTag(ids_[index], TypeOf(tag));
}

}  // namespace velmora::messaging
