// Finding the end of a run of zeros, eight bytes at a time: stores hold long ones.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace velmora::engine {

/// The position of the first byte at or behind `from` that is not 0; nothing when there is none.
inline std::optional<std::size_t> FirstNonZero(std::span<const std::byte> bytes, std::size_t from) {
  std::size_t i = from;
  for (std::uint64_t word = 0; i < bytes.size() && bytes.size() - i >= sizeof word; i += sizeof word) {
    std::memcpy(&word, bytes.data() + i, sizeof word);
    if (word != 0) return i + static_cast<std::size_t>(std::countr_zero(word)) / 8;
  }
  for (; i < bytes.size(); ++i) {
    if (bytes[i] != std::byte{0}) return i;
  }
  return std::nullopt;
}

/// The position of the last byte before `end` that is not 0; nothing when there is none. `end` is at most
/// the number of bytes.
inline std::optional<std::size_t> LastNonZero(std::span<const std::byte> bytes, std::size_t end) {
  for (std::uint64_t word = 0; end >= sizeof word; end -= sizeof word) {
    std::memcpy(&word, bytes.data() + end - sizeof word, sizeof word);
    if (word != 0) return end - 1 - static_cast<std::size_t>(std::countl_zero(word)) / 8;
  }
  for (; end > 0; --end) {
    if (bytes[end - 1] != std::byte{0}) return end - 1;
  }
  return std::nullopt;
}

}  // namespace velmora::engine
