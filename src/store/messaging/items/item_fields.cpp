#include "store/messaging/items/item_fields.h"

#include <algorithm>

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

void ItemFields::Put(Field field, FieldValue value) {
  const auto found = std::ranges::find(entries_, field, &Entry::field);
  if (found != entries_.end()) {
    found->value = std::move(value);
  } else {
    entries_.push_back({field, std::move(value)});
  }
}

const FieldValue* ItemFields::Find(Field field) const {
  const auto found = std::ranges::find(entries_, field, &Entry::field);
  return found != entries_.end() ? &found->value : nullptr;
}

text::TextView ItemFields::Text(Field field) const {
  const FieldValue* value = Find(field);
  return value != nullptr ? text::TextView(std::get<text::Text>(*value)) : text::TextView();
}

std::optional<text::FileTime> ItemFields::Time(Field field) const {
  const FieldValue* value = Find(field);
  if (value == nullptr) return std::nullopt;
  return text::FileTimeOf(std::get<text::OleDate>(*value));
}

std::optional<bool> ItemFields::Flag(Field field) const {
  const FieldValue* value = Find(field);
  if (value == nullptr) return std::nullopt;
  return std::get<bool>(*value);
}

std::optional<std::int32_t> ItemFields::Number(Field field) const {
  const FieldValue* value = Find(field);
  if (value == nullptr) return std::nullopt;
  return std::get<std::int32_t>(*value);
}

}  // namespace velmora::messaging
