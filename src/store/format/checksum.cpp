#include "store/format/checksum.h"

#include <libdeflate.h>

namespace velmora {

// The library's sum is complemented on the way in and out.
std::uint32_t WeakCrc(std::span<const std::byte> bytes) {
  return ~libdeflate_crc32(0xFFFFFFFF, bytes.data(), bytes.size());
}

// The sum of a difference is the difference of the sums. So it is that of one bit and of zeros behind it, which is
// undone step by step until the bit alone is left.
std::optional<std::size_t> SingleWrongBit(std::uint32_t difference, std::size_t size) {
  constexpr std::uint32_t kPolynomial = 0xEDB88320;
  constexpr std::uint32_t kHighest = 0x80000000;
  for (std::size_t steps = 1; steps <= size * 8; ++steps) {
    difference = (difference & kHighest) != 0 ? (difference ^ kPolynomial) << 1 | 1 : difference << 1;
    if (difference == 1) return size * 8 - steps;
  }
  return std::nullopt;
}

}  // namespace velmora
