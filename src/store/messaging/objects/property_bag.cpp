#include "store/messaging/objects/property_bag.h"

#include <algorithm>
#include <array>
#include <bit>

#include "store/format/little_endian.h"
#include "store/ltp/multi_value.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

/// A message or a recipient has about so many properties, and would move them to a larger place time and again; so much
/// stays free behind a long value too, which is not moved for those that follow it.
constexpr std::size_t kUsualCount = 24;
constexpr std::size_t kUsualBytes = 512;

}  // namespace

const PropertyBag::Entry* PropertyBag::Find(PropTag tag) const {
  if (IdOf(tag) > highestId_) return nullptr;
  const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) { return IdOf(entry.tag) == IdOf(tag); });
  return found != entries_.end() ? &*found : nullptr;
}

void PropertyBag::Remove(PropTag tag) {
  if (!Has(tag)) return;
  std::erase_if(entries_, [&](const Entry& entry) { return IdOf(entry.tag) == IdOf(tag); });
}

void PropertyBag::PutBytes(PropTag tag, std::span<const std::byte> bytes) {
  Remove(tag);
  if (entries_.empty()) Reserve();
  highestId_ = std::max(highestId_, IdOf(tag));
  entries_.push_back({tag, values_.size(), bytes.size(), nullptr});
  const std::size_t needed = values_.size() + bytes.size();
  if (needed > values_.capacity()) values_.reserve(std::max(2 * values_.capacity(), needed + kUsualBytes));
  values_.insert(values_.end(), bytes.begin(), bytes.end());
}

void PropertyBag::Reserve() {
  entries_.reserve(kUsualCount);
  values_.reserve(kUsualBytes);
}

void PropertyBag::PutNumber(PropTag tag, std::uint64_t value, std::size_t size) {
  std::array<std::byte, sizeof value> bytes;
  velmora::Store(std::span<std::byte>(bytes), 0, value);
  PutBytes(tag, std::span(bytes).first(size));
}

void PropertyBag::PutFloating64(PropTag tag, double value) {
  PutNumber(tag, std::bit_cast<std::uint64_t>(value), sizeof value);
}

void PropertyBag::PutText(PropTag tag, text::TextView text) {
  text = WithoutNulsAtEnd(text);
  if (text.empty()) return Remove(tag);
  if (IsStorable(text)) return PutBytes(tag, std::as_bytes(std::span(text)));  // nearly all
  const text::Text storable = Storable(text);
  PutBytes(tag, std::as_bytes(std::span(storable)));
}

void PropertyBag::PutName(PropTag tag, text::TextView text) { PutText(tag, NameOf(text)); }

void PropertyBag::PutTexts(PropTag tag, const std::vector<text::Text>& texts) {
  std::vector<text::Text> storable;
  for (const text::Text& text : texts) storable.push_back(Storable(text));
  std::erase(storable, text::Text());
  if (storable.empty()) {
    Remove(tag);
  } else {
    PutBytes(tag, ltp::EncodeMultiple(storable));
  }
}

void PropertyBag::PutStored(PropTag tag, std::shared_ptr<const StoredValue> value) {
  Remove(tag);
  highestId_ = std::max(highestId_, IdOf(tag));
  entries_.push_back({tag, 0, 0, std::move(value)});
}

void PropertyBag::Put(const PropertyBag& other) {
  for (const Entry& entry : other.entries_) {
    if (entry.stored != nullptr) {
      PutStored(entry.tag, entry.stored);
    } else {
      PutBytes(entry.tag, std::span(other.values_).subspan(entry.offset, entry.size));
    }
  }
}

std::optional<PropTag> PropertyBag::TagOf(PropTag tag) const {
  const Entry* entry = Find(tag);
  return entry != nullptr ? std::optional(entry->tag) : std::nullopt;
}

std::int32_t PropertyBag::Integer32(PropTag tag) const {
  return static_cast<std::int32_t>(Load<std::uint32_t>(Value(tag), 0));
}

std::size_t PropertyBag::ValueBytes() const {
  std::size_t bytes = 0;
  for (const Entry& entry : entries_) bytes += entry.size;
  return bytes;
}

std::span<const std::byte> PropertyBag::Value(PropTag tag) const {
  const Entry* entry = Find(tag);
  return entry != nullptr ? std::span(values_).subspan(entry->offset, entry->size) : std::span<const std::byte>();
}

std::vector<ltp::PropertyView> PropertyBag::Views() const {
  std::vector<ltp::PropertyView> views;
  views.reserve(entries_.size());
  for (const Entry& entry : entries_) {
    if (entry.stored == nullptr) views.push_back({entry.tag, std::span(values_).subspan(entry.offset, entry.size)});
  }
  return views;
}

void PropertyBag::AddTo(ltp::PropertyContextWriter& node) const {
  for (const Entry& entry : entries_) {
    if (entry.stored == nullptr) {
      node.Add(entry.tag, std::span(values_).subspan(entry.offset, entry.size));
      continue;
    }
    const ndb::WrittenNode& value = entry.stored->Node();
    if (TypeOf(entry.tag) == PropType::kObject) {
      const Nid nid = entry.stored->Id() ? *entry.stored->Id() : node.NewSubnodeNid();
      node.AddObject(entry.tag, nid, static_cast<std::uint32_t>(Size32(value.dataSize)));
      node.AddSubnode(nid, value);
    } else {
      node.AddTree(entry.tag, {value.trees.bidData, value.dataSize});
    }
  }
}

}  // namespace velmora::messaging
