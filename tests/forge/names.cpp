#include "forge/names.h"

#include <algorithm>
#include <array>
#include <map>

#include "forge/checksum.h"

namespace velmora::forge {
namespace {

constexpr std::uint32_t kBuckets = 251;

struct GuidParts {
  std::uint32_t data1;
  std::uint16_t data2;
  std::uint16_t data3;
  std::array<std::uint8_t, 8> tail;
};

constexpr std::array<std::uint8_t, 8> kUsualTail = {0xC0, 0, 0, 0, 0, 0, 0, 0x46};

GuidParts PartsOf(PropertySet set) {
  switch (set) {
    case PropertySet::kMapi:
      return {0x00020328, 0, 0, kUsualTail};
    case PropertySet::kPublic:
      return {0x00020329, 0, 0, kUsualTail};
    case PropertySet::kCommon:
      return {0x00062008, 0, 0, kUsualTail};
    case PropertySet::kAddress:
      return {0x00062004, 0, 0, kUsualTail};
    case PropertySet::kAppointment:
      return {0x00062002, 0, 0, kUsualTail};
    case PropertySet::kTask:
      return {0x00062003, 0, 0, kUsualTail};
    case PropertySet::kLog:
      return {0x0006200A, 0, 0, kUsualTail};
    case PropertySet::kNote:
      return {0x0006200E, 0, 0, kUsualTail};
    case PropertySet::kHeaders:
      return {0x00020386, 0, 0, kUsualTail};
    case PropertySet::kOwn:
      return {0x1F0A3C5E, 0x7B21, 0x4D6F, {0x9A, 0x04, 0x5E, 0x11, 0xC7, 0x32, 0x80, 0xEE}};
    case PropertySet::kMeeting:
      break;
  }
  return {0x6ED8DA90, 0x450B, 0x101B, {0x98, 0xDA, 0x00, 0xAA, 0x00, 0x3F, 0x13, 0x05}};
}

bool operator==(const PropertyName& a, const PropertyName& b) {
  return a.set == b.set && a.number == b.number && a.text == b.text;
}

}  // namespace

Bytes SetGuid(PropertySet set) {
  const GuidParts parts = PartsOf(set);
  Bytes guid;
  Append(guid, parts.data1, 4);
  Append(guid, parts.data2, 2);
  Append(guid, parts.data3, 2);
  for (const std::uint8_t b : parts.tail) Append(guid, b, 1);
  return guid;
}

std::uint16_t NameMap::GuidIndexOf(PropertySet set) {
  if (set == PropertySet::kMapi) return 1;
  if (set == PropertySet::kPublic) return 2;
  auto found = std::find(sets_.begin(), sets_.end(), set);
  if (found == sets_.end()) found = sets_.insert(sets_.end(), set);
  return static_cast<std::uint16_t>(3 + (found - sets_.begin()));
}

std::uint16_t NameMap::IdOf(const PropertyName& name) {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.name == name; });
  if (found == entries_.end()) {
    Entry entry{
        .name = name, .guidIndex = GuidIndexOf(name.set), .textOffset = static_cast<std::uint32_t>(texts_.size())};
    if (!name.text.empty()) {
      const Bytes text = ToUtf16(name.text);
      Append(texts_, text.size(), 4);
      Append(texts_, text);
      texts_.resize((texts_.size() + 3) / 4 * 4);
    }
    entries_.push_back(std::move(entry));
    return static_cast<std::uint16_t>(0x8000 + entries_.size() - 1);
  }
  return static_cast<std::uint16_t>(0x8000 + (found - entries_.begin()));
}

void NameMap::PadTo(std::size_t count) {
  for (std::uint32_t number = 0x8E00; Count() < count; ++number) {
    IdOf({.set = PropertySet::kCommon, .number = number});
  }
}

PropertyList NameMap::Properties(bool pairedBuckets) const {
  Bytes guids;
  for (const PropertySet set : sets_) Append(guids, SetGuid(set));
  Bytes list;
  std::map<std::uint32_t, Bytes> buckets;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    const bool hasText = !entry.name.text.empty();
    const auto kind = static_cast<std::uint32_t>(entry.guidIndex << 1 | (hasText ? 1 : 0));
    const auto append = [&](Bytes& to, std::uint32_t key) {
      Append(to, key, 4);
      Append(to, kind, 2);
      Append(to, i, 2);
    };
    // A bucket knows a text by its checksum, the list of entries by its place.
    const std::uint32_t hash = hasText ? Checksum(ToUtf16(entry.name.text)) : entry.name.number;
    append(list, hasText ? entry.textOffset : entry.name.number);
    append(buckets[(hash ^ kind) % kBuckets], hash);
  }
  PropertyList properties = {Int32(1, kBuckets), Binary(2, guids), Binary(3, list), Binary(4, texts_)};
  for (auto& [bucket, bytes] : buckets) {
    if (pairedBuckets && bytes.size() == 8) Append(bytes, Bytes(bytes));
    properties.push_back(Binary(static_cast<std::uint16_t>(0x1000 + bucket), bytes));
  }
  return properties;
}

PropertyList Resolve(NameMap& names, PropertyList properties) {
  for (Property& property : properties) {
    if (!property.name) continue;
    property.id = names.IdOf(*property.name);
    property.name.reset();
  }
  return properties;
}

}  // namespace velmora::forge
