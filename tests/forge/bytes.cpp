#include "forge/bytes.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velmora::forge {
namespace {

// What Windows-1252 has at 0x80 to 0x9F; 0 where it has nothing.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                     0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::byte AnsiByte(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<std::byte>(unit);
  const auto found = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
  if (found == kUpperControls.end()) return std::byte{'?'};
  return static_cast<std::byte>(0x80 + (found - kUpperControls.begin()));
}

}  // namespace

void Put(std::span<std::byte> bytes, std::size_t offset, std::uint64_t value, std::size_t width) {
  if (offset > bytes.size() || width > bytes.size() - offset) throw std::out_of_range("forge: written beyond the end");
  for (std::size_t i = 0; i < width; ++i) bytes[offset + i] = static_cast<std::byte>(value >> (8 * i));
}

std::uint64_t Get(std::span<const std::byte> bytes, std::size_t offset, std::size_t width) {
  if (offset > bytes.size() || width > bytes.size() - offset) throw std::out_of_range("forge: read beyond the end");
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) value |= std::to_integer<std::uint64_t>(bytes[offset + i]) << (8 * i);
  return value;
}

void Append(Bytes& bytes, std::uint64_t value, std::size_t width) {
  std::array<std::byte, 8> word;
  for (std::size_t i = 0; i < word.size(); ++i) word[i] = static_cast<std::byte>(value >> (8 * i));
  bytes.insert(bytes.end(), word.begin(), word.begin() + static_cast<std::ptrdiff_t>(width));
}

void Append(Bytes& bytes, std::span<const std::byte> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

Bytes ToBytes(std::string_view text) {
  Bytes bytes(text.size());
  std::transform(text.begin(), text.end(), bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
  return bytes;
}

Bytes ToUtf16(std::u16string_view text) {
  Bytes bytes(text.size() * 2);
  for (std::size_t i = 0; i < text.size(); ++i) {
    bytes[2 * i] = static_cast<std::byte>(text[i]);
    bytes[2 * i + 1] = static_cast<std::byte>(text[i] >> 8);
  }
  return bytes;
}

Bytes ToAnsi(std::u16string_view text) {
  Bytes bytes(text.size());
  std::transform(text.begin(), text.end(), bytes.begin(), AnsiByte);
  return bytes;
}

Bytes Noise(std::size_t count, std::uint32_t seed) {
  Bytes bytes(count);
  std::uint32_t state = seed * 2654435761U + 0x9E3779B9U;
  for (std::byte& b : bytes) {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    b = static_cast<std::byte>(state >> 11);
  }
  return bytes;
}

}  // namespace velmora::forge
