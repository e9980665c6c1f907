// Little-endian bytes, the stuff that stores are forged from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::forge {

using Bytes = std::vector<std::byte>;

/// Writes the low `width` bytes (1 to 8) of `value` at `offset`, which must lie within `bytes`.
void Put(std::span<std::byte> bytes, std::size_t offset, std::uint64_t value, std::size_t width);

/// The `width` bytes (1 to 8) at `offset` as a number; throws std::out_of_range beyond the end.
std::uint64_t Get(std::span<const std::byte> bytes, std::size_t offset, std::size_t width);

/// Appends the low `width` bytes of `value`.
void Append(Bytes& bytes, std::uint64_t value, std::size_t width);
void Append(Bytes& bytes, std::span<const std::byte> more);

/// The characters as they are, one byte each.
Bytes ToBytes(std::string_view text);

/// UTF-16LE, no terminator.
Bytes ToUtf16(std::u16string_view text);

/// Windows-1252 bytes; what the code page lacks becomes "?".
Bytes ToAnsi(std::u16string_view text);

/// `count` bytes of a fixed, incompressible-looking sequence that starts differently for each `seed`.
Bytes Noise(std::size_t count, std::uint32_t seed);

}  // namespace velmora::forge
