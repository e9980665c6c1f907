#include "forge/property.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <utility>

namespace velmora::forge {
namespace {

Property Fixed(std::uint16_t id, std::uint16_t type, std::uint64_t value, std::size_t width) {
  Property property{.id = id, .type = type};
  Append(property.data, value, width);
  return property;
}

// A list: count, the start of each item, the items.
Bytes FormList(const std::vector<Bytes>& items) {
  Bytes list;
  Append(list, items.size(), 4);
  std::size_t start = 4 + 4 * items.size();
  for (const Bytes& item : items) {
    Append(list, start, 4);
    start += item.size();
  }
  for (const Bytes& item : items) Append(list, item);
  return list;
}

std::u16string FromUtf16(std::span<const std::byte> bytes) {
  std::u16string text(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char16_t>(std::to_integer<unsigned>(bytes[2 * i]) |
                                    std::to_integer<unsigned>(bytes[2 * i + 1]) << 8);
  }
  return text;
}

Bytes NarrowList(const Bytes& list) {
  const std::size_t count = Get(list, 0, 4);
  std::vector<Bytes> items;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t start = Get(list, 4 + 4 * i, 4);
    const std::size_t end = i + 1 < count ? Get(list, 8 + 4 * i, 4) : list.size();
    items.push_back(ToAnsi(FromUtf16(std::span(list).subspan(start, end - start))));
  }
  return FormList(items);
}

}  // namespace

FileTime TimeOf(int year, unsigned month, unsigned day, unsigned hour, unsigned minute, unsigned second) {
  using namespace std::chrono;
  const auto days = sys_days{std::chrono::year{year} / month / day} - sys_days{std::chrono::year{1601} / 1 / 1};
  const auto seconds = duration_cast<std::chrono::seconds>(days).count() + hour * 3600LL + minute * 60LL + second;
  return static_cast<FileTime>(seconds) * 10'000'000U;
}

Property Int16(std::uint16_t id, std::uint16_t value) { return Fixed(id, kInt16, value, 2); }
Property Int32(std::uint16_t id, std::uint32_t value) { return Fixed(id, kInt32, value, 4); }
Property Int64(std::uint16_t id, std::uint64_t value) { return Fixed(id, kInt64, value, 8); }
Property Bool(std::uint16_t id, bool value) { return Fixed(id, kBool, value ? 1 : 0, 1); }
Property Double(std::uint16_t id, double value) { return Fixed(id, kDouble, std::bit_cast<std::uint64_t>(value), 8); }
Property Time(std::uint16_t id, FileTime value) { return Fixed(id, kTime, value, 8); }
Property Guid(std::uint16_t id, Bytes sixteen) { return {.id = id, .type = kGuid, .data = std::move(sixteen)}; }

Property Binary(std::uint16_t id, Bytes value, Place place) {
  return {.id = id, .type = kBinary, .data = std::move(value), .place = place};
}

Property Text(std::uint16_t id, std::u16string_view value, Place place) {
  return {.id = id, .type = kString, .data = ToUtf16(value), .place = place, .textOfStore = true};
}

Property Texts(std::uint16_t id, const std::vector<std::u16string>& values, Place place) {
  std::vector<Bytes> items(values.size());
  std::transform(values.begin(), values.end(), items.begin(), [](const auto& value) { return ToUtf16(value); });
  return {.id = id, .type = kStringList, .data = FormList(items), .place = place, .textOfStore = true};
}

Property Text8(std::uint16_t id, std::string_view value, Place place) {
  return {.id = id, .type = kString8, .data = ToBytes(value), .place = place};
}

Property Text16(std::uint16_t id, std::u16string_view value, Place place) {
  return {.id = id, .type = kString, .data = ToUtf16(value), .place = place};
}

Property Raw(std::uint16_t id, std::uint16_t type, Bytes value, Place place) {
  return {.id = id, .type = type, .data = std::move(value), .place = place};
}

Property Binaries(std::uint16_t id, const std::vector<Bytes>& values, Place place) {
  return {.id = id, .type = kBinaryList, .data = FormList(values), .place = place};
}

Property Stored(std::uint16_t id, std::uint16_t type, std::uint64_t tree) {
  return {.id = id, .type = type, .tree = tree};
}

Property Reference(std::uint16_t id, std::uint16_t type, std::uint32_t value) {
  return {.id = id, .type = type, .reference = value};
}

Property Named(PropertySet set, std::uint32_t number, Property property) {
  property.name = std::make_shared<PropertyName>(PropertyName{.set = set, .number = number});
  return property;
}

Property Named(PropertySet set, std::u16string_view text, Property property) {
  property.name = std::make_shared<PropertyName>(PropertyName{.set = set, .text = std::u16string(text)});
  return property;
}

bool IsInline(std::uint16_t type) {
  return type == kInt16 || type == kInt32 || type == kBool || type == kFloat || type == kError;
}

std::uint16_t StoredType(const Property& property, bool wide) {
  return property.textOfStore && !wide ? static_cast<std::uint16_t>(property.type - 1) : property.type;
}

const Bytes& StoredData(const Property& property, bool wide, Bytes& room) {
  if (!property.textOfStore || wide) return property.data;
  room = property.type == kStringList ? NarrowList(property.data) : ToAnsi(FromUtf16(property.data));
  return room;
}

const Property* Find(const PropertyList& properties, std::uint16_t id) {
  const auto found = std::find_if(properties.begin(), properties.end(), [id](const Property& p) { return p.id == id; });
  return found == properties.end() ? nullptr : &*found;
}

Property* Find(PropertyList& properties, std::uint16_t id) {
  return const_cast<Property*>(Find(std::as_const(properties), id));
}

void Set(PropertyList& properties, Property property) {
  if (Property* old = property.name ? nullptr : Find(properties, property.id)) {
    *old = std::move(property);
  } else {
    properties.push_back(std::move(property));
  }
}

}  // namespace velmora::forge
