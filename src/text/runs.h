// Runs of plain characters, which need no look of their own: measured and carried over many at a time. The inner loops
// have a fixed length and no way out, so that compilers turn them into vector instructions.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace velmora::text {

inline constexpr std::size_t kRunStep = 16;

/// How many units from the start are plain: `special` gives 0 for them, as a number of the unit's type.
template <class Unit, class Special>
std::size_t PlainRun(const Unit* units, std::size_t size, Special special) {
  std::size_t length = 0;
  for (; size - length >= kRunStep; length += kRunStep) {
    Unit any = 0;
    for (std::size_t i = 0; i < kRunStep; ++i) any = static_cast<Unit>(any | special(units[length + i]));
    if (any != 0) break;
  }
  while (length < size && special(units[length]) == 0) ++length;
  return length;
}

/// As many units, each with the same number in another type.
template <class From, class To>
void CopyUnits(const From* __restrict from, std::size_t size, To* __restrict to) {
  std::size_t done = 0;
  for (; size - done >= kRunStep; done += kRunStep) {
    for (std::size_t i = 0; i < kRunStep; ++i) to[done + i] = static_cast<To>(from[done + i]);
  }
  for (; done < size; ++done) to[done] = static_cast<To>(from[done]);
}

/// How many bytes from the start are ASCII. In most languages the next one that is not stands a few words on, so it is
/// told where it stands and not looked for.
inline std::size_t AsciiRun(const unsigned char* bytes, std::size_t size) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t length = 0;
  for (; size - length >= sizeof(std::uint64_t); length += sizeof(std::uint64_t)) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, bytes + length, sizeof eight);
    if ((eight & kHighBits) != 0) return length + static_cast<std::size_t>(std::countr_zero(eight & kHighBits)) / 8;
  }
  while (length < size && bytes[length] < 0x80) ++length;
  return length;
}

/// What is not plain by ASCII.
inline constexpr auto kBeyondAscii = []<class Unit>(Unit unit) { return static_cast<Unit>(unit & ~0x7F); };

}  // namespace velmora::text
