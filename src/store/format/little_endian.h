// Numbers of the store in memory and back, always through these functions, never by laying a struct over bytes. What
// may be hostile in more than its numbers is looked at through a ByteView (byte_view.h).
#pragma once

#include <array>
#include <bit>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

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

/// The number as it stands in a store.
template <std::unsigned_integral T>
std::array<std::byte, sizeof(T)> BytesOf(T value) {
  return std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
}

/// Appends a number, or bytes as they are.
template <std::unsigned_integral T>
void Append(std::vector<std::byte>& out, T value) {
  out.resize(out.size() + sizeof(T));
  Store(std::span<std::byte>(out), out.size() - sizeof(T), value);
}
inline void Append(std::vector<std::byte>& out, std::span<const std::byte> bytes) {
  out.insert(out.end(), bytes.begin(), bytes.end());
}

inline Nid LoadNid(std::span<const std::byte> bytes, std::size_t offset) {
  return Nid{Load<std::uint32_t>(bytes, offset)};
}
inline Bid LoadBid(std::span<const std::byte> bytes, std::size_t offset) {
  return Bid{Load<std::uint64_t>(bytes, offset)};
}
inline void Store(std::span<std::byte> bytes, std::size_t offset, Bid bid) { Store(bytes, offset, Value(bid)); }

}  // namespace velmora
