// Numbers of the store in memory and back, always through these functions, never by laying a struct over
// bytes.
#pragma once

#include <bit>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "store/format/ids.h"

namespace velmora {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they stand in memory");

/// The number at `offset`; 0 when it does not lie wholly in `bytes`, so a reader that has to tell looks at
/// the size first.
template <std::unsigned_integral T>
T Load(std::span<const std::byte> bytes, std::size_t offset) {
  T value = 0;
  if (offset <= bytes.size() && bytes.size() - offset >= sizeof(T)) {
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
  }
  return value;
}

/// Writes a number at `offset`, which the writer has made room for.
template <std::unsigned_integral T>
void Store(std::span<std::byte> bytes, std::size_t offset, T value) {
  assert(offset <= bytes.size() && bytes.size() - offset >= sizeof(T));
  std::memcpy(bytes.data() + offset, &value, sizeof(T));
}

inline Nid LoadNid(std::span<const std::byte> bytes, std::size_t offset) {
  return Nid{Load<std::uint32_t>(bytes, offset)};
}
inline Bid LoadBid(std::span<const std::byte> bytes, std::size_t offset) {
  return Bid{Load<std::uint64_t>(bytes, offset)};
}
inline void Store(std::span<std::byte> bytes, std::size_t offset, Bid bid) { Store(bytes, offset, Value(bid)); }

}  // namespace velmora
