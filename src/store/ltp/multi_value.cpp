#include "store/ltp/multi_value.h"

#include <cstring>

#include "store/format/little_endian.h"

namespace velmora::ltp {

// count u32 | offset u32 of each element, from the start of the value | elements
std::vector<std::byte> EncodeMultiple(std::span<const std::span<const std::byte>> elements) {
  if (elements.empty()) return {};
  std::size_t size = 4 + 4 * elements.size();
  for (const auto& element : elements) size += element.size();
  std::vector<std::byte> value(size);
  Store<std::uint32_t>(value, 0, static_cast<std::uint32_t>(elements.size()));
  std::size_t offset = 4 + 4 * elements.size();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    Store<std::uint32_t>(value, 4 + 4 * i, static_cast<std::uint32_t>(offset));
    if (!elements[i].empty()) std::memcpy(value.data() + offset, elements[i].data(), elements[i].size());
    offset += elements[i].size();
  }
  return value;
}

std::vector<std::byte> EncodeMultiple(std::span<const text::Text> elements) {
  std::vector<std::span<const std::byte>> bytes;
  for (const text::Text& element : elements) bytes.push_back(std::as_bytes(std::span(element)));
  return EncodeMultiple(bytes);
}

std::optional<std::vector<std::span<const std::byte>>> DecodeMultiple(std::span<const std::byte> value) {
  std::vector<std::span<const std::byte>> elements;
  if (value.empty()) return elements;
  const std::size_t count = Load<std::uint32_t>(value, 0);
  if (value.size() < 4 || count > (value.size() - 4) / 4) return std::nullopt;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t start = Load<std::uint32_t>(value, 4 + 4 * i);
    const std::size_t end = i + 1 < count ? Load<std::uint32_t>(value, 8 + 4 * i) : value.size();
    if (start > end || end > value.size()) return std::nullopt;
    elements.push_back(value.subspan(start, end - start));
  }
  return elements;
}

std::optional<bool> FlagIn(const std::optional<std::vector<std::byte>>& value) {
  const auto number = NumberIn<std::uint8_t>(value);
  return number ? std::optional(*number != 0) : std::nullopt;
}

std::optional<text::Text> TextIn(const std::optional<std::vector<std::byte>>& value) {
  return value ? std::optional(DecodeText(*value)) : std::nullopt;
}

std::vector<std::byte> EncodeText(text::TextView text) {
  const auto bytes = std::as_bytes(std::span(text.data(), text.size()));
  return {bytes.begin(), bytes.end()};
}

text::Text DecodeText(std::span<const std::byte> value) {
  text::Text text(value.size() / 2, u'\0');
  if (!text.empty()) std::memcpy(text.data(), value.data(), text.size() * 2);
  return text;
}

}  // namespace velmora::ltp
