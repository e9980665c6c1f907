// The checksum of header, pages and blocks: the reflected CRC-32 of polynomial 0xEDB88320 with initial value
// 0 and no final complement. Compressed texts, the store password and the names of named properties use it
// too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velmora {

std::uint32_t WeakCrc(std::span<const std::byte> bytes);

/// The place of the bit that is wrong, if a single one of so many bytes is: the sum that they have and the one that
/// they should have tell it by the bits in which they differ. Counted from the lowest bit of the first byte. In 4 KB
/// other damage looks like one wrong bit once in 130,000 times.
std::optional<std::size_t> SingleWrongBit(std::uint32_t difference, std::size_t size);

/// The signature that ties a page or block to its place, as published: offset and id, low 32 bits each, combined and
/// folded to 16 bits.
constexpr std::uint16_t ComputeSig(std::uint64_t offset, std::uint64_t id) {
  const auto mixed = static_cast<std::uint32_t>(offset ^ id);
  return static_cast<std::uint16_t>(mixed ^ (mixed >> 16));
}

}  // namespace velmora
