#include "store/messaging/items/item_fields.h"

#include <algorithm>

#include "text/code_page.h"

namespace velmora::messaging {

using output::Field;
using output::FieldValue;

FieldValue EmptyValue(output::FieldType type) {
  switch (type) {
    case output::FieldType::Text:
      return text::Text();
    case output::FieldType::Date:
      return text::OleDate{};
    case output::FieldType::Flag:
      return false;
    case output::FieldType::Number:
    case output::FieldType::Number16:
      break;
  }
  return std::int32_t{0};
}

void ItemFields::Put(Field field, FieldValue value) { Put(Entry{field, std::move(value)}); }

void ItemFields::PutBytes(Field field, std::string_view bytes) { Put(Entry{field, text::Text(), std::string(bytes)}); }

void ItemFields::Put(Entry entry) {
  const auto found = std::ranges::find(entries_, entry.field, &Entry::field);
  if (found != entries_.end()) {
    *found = std::move(entry);
  } else {
    entries_.push_back(std::move(entry));
  }
}

const ItemFields::Entry* ItemFields::Find(Field field) const {
  const auto found = std::ranges::find(entries_, field, &Entry::field);
  return found != entries_.end() ? &*found : nullptr;
}

std::optional<FieldValue> ItemFields::Value(Field field) const {
  const Entry* entry = Find(field);
  if (entry == nullptr) return std::nullopt;
  if (entry->bytes) return text::CodePage::Lossless().Decode(*entry->bytes);
  return entry->value;
}

text::TextView ItemFields::Text(Field field) const {
  const Entry* entry = Find(field);
  return entry != nullptr ? text::TextView(std::get<text::Text>(entry->value)) : text::TextView();
}

std::optional<text::FileTime> ItemFields::Time(Field field) const {
  const Entry* entry = Find(field);
  if (entry == nullptr) return std::nullopt;
  return text::FileTimeOf(std::get<text::OleDate>(entry->value));
}

std::optional<bool> ItemFields::Flag(Field field) const {
  const Entry* entry = Find(field);
  if (entry == nullptr) return std::nullopt;
  return std::get<bool>(entry->value);
}

std::optional<std::int32_t> ItemFields::Number(Field field) const {
  const Entry* entry = Find(field);
  if (entry == nullptr) return std::nullopt;
  return std::get<std::int32_t>(entry->value);
}

}  // namespace velmora::messaging
