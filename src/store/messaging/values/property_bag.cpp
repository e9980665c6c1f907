#include "store/messaging/values/property_bag.h"

#include <algorithm>
#include <bit>

#include "store/ltp/multi_value.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {

const PropertyBag::Entry* PropertyBag::Find(PropTag tag) const {
  const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) { return IdOf(entry.tag) == IdOf(tag); });
  return found != entries_.end() ? &*found : nullptr;
}

void PropertyBag::Remove(PropTag tag) {
  std::erase_if(entries_, [&](const Entry& entry) { return IdOf(entry.tag) == IdOf(tag); });
}

void PropertyBag::PutBytes(PropTag tag, std::span<const std::byte> bytes) {
  Remove(tag);
  entries_.push_back({tag, values_.size(), bytes.size()});
  values_.insert(values_.end(), bytes.begin(), bytes.end());
}

void PropertyBag::PutNumber(PropTag tag, std::uint64_t value, std::size_t size) {
  std::byte bytes[sizeof value];
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(value >> (8 * i));
  PutBytes(tag, std::span(bytes, size));
}

void PropertyBag::PutFloating64(PropTag tag, double value) {
  PutNumber(tag, std::bit_cast<std::uint64_t>(value), sizeof value);
}

void PropertyBag::PutText(PropTag tag, text::TextView text) {
  const text::Text storable = Storable(text);
  if (storable.empty()) {
    Remove(tag);
  } else {
    PutBytes(tag, std::as_bytes(std::span(storable)));
  }
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

std::span<const std::byte> PropertyBag::Value(PropTag tag) const {
  const Entry* entry = Find(tag);
  return entry != nullptr ? std::span(values_).subspan(entry->offset, entry->size) : std::span<const std::byte>();
}

std::vector<ltp::PropertyView> PropertyBag::Views() const {
  std::vector<ltp::PropertyView> views;
  views.reserve(entries_.size());
  for (const Entry& entry : entries_)
    views.push_back({entry.tag, std::span(values_).subspan(entry.offset, entry.size)});
  return views;
}

void PropertyBag::AddTo(ltp::PropertyContextWriter& node) const {
  for (const ltp::PropertyView& view : Views()) node.Add(view.tag, view.value);
}

}  // namespace velmora::messaging
