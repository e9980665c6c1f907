// A source in large pieces, each with enough of what lies ahead of it for the largest block that ends in it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora::engine {

inline constexpr std::uint64_t kSector = 512;       ///< pages and the units of every layout end at multiples of it
inline constexpr std::uint64_t kStep = 1ull << 20;  ///< read at a time
inline constexpr std::uint64_t kLargestBlock = 65536;
inline constexpr std::uint64_t kReachOfPass = 2 * kLargestBlock + kSector;  ///< that is looked at again ahead of a step

/// How often a byte may be summed: blocks of a sound store do not overlap, and few bytes that are none look like it.
inline constexpr std::uint64_t kTimesSummed = 16;

/// A piece of the source in memory.
struct Stretch {
  std::uint64_t base = 0;
  std::span<const std::byte> bytes;

  /// `length` bytes up to the offset `end`; none where they do not lie in it as a whole.
  std::span<const std::byte> Ending(std::uint64_t end, std::uint64_t length) const {
    if (end < base + length || end - base > bytes.size()) return {};
    return bytes.subspan(end - base - length, length);
  }

  /// The bytes from `begin` on, which lies in it or at its end: `length` of them, or what there is.
  std::span<const std::byte> UpTo(std::uint64_t begin, std::uint64_t length) const {
    const auto behind = bytes.subspan(std::min<std::uint64_t>(begin - base, bytes.size()));
    return behind.first(std::min<std::uint64_t>(length, behind.size()));
  }
};

}  // namespace velmora::engine
