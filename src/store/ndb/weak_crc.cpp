#include "store/ndb/weak_crc.h"

#include <array>
#include <bit>
#include <cstring>

namespace velmora::ndb {
namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320;
constexpr std::size_t kSlices = 16;

using Table = std::array<std::uint32_t, 256>;

// tables[k][b]: the sum of a byte b that is followed by k zero bytes. With all of them at hand 16 bytes are
// taken in one step, as the sum is linear.
constexpr std::array<Table, kSlices> MakeTables() {
  std::array<Table, kSlices> tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t c = byte;
    for (int bit = 0; bit < 8; ++bit) c = (c >> 1) ^ ((c & 1) != 0 ? kPolynomial : 0);
    tables[0][byte] = c;
  }
  for (std::size_t k = 1; k < kSlices; ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t c = tables[k - 1][byte];
      tables[k][byte] = tables[0][c & 0xFF] ^ (c >> 8);
    }
  }
  return tables;
}

constexpr std::array<Table, kSlices> kTables = MakeTables();
static_assert(kTables[0][1] == 0x77073096 && kTables[0][2] == 0xEE0E612C && kTables[0][255] == 0x2D02EF8D);
static_assert(std::endian::native == std::endian::little, "words are loaded as they stand in memory");

std::uint32_t Word(const std::byte* bytes) {
  std::uint32_t word;
  std::memcpy(&word, bytes, sizeof(word));
  return word;
}

// The sum of the four bytes of a word of which the first is followed by `slice` + 3 bytes.
std::uint32_t Fold(std::uint32_t word, std::size_t slice) {
  return kTables[slice + 3][word & 0xFF] ^ kTables[slice + 2][word >> 8 & 0xFF] ^
         kTables[slice + 1][word >> 16 & 0xFF] ^ kTables[slice][word >> 24];
}

}  // namespace

std::uint32_t WeakCrc(std::span<const std::byte> bytes) {
  std::uint32_t crc = 0;
  const std::byte* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= kSlices; at += kSlices, left -= kSlices) {
    crc = Fold(crc ^ Word(at), 12) ^ Fold(Word(at + 4), 8) ^ Fold(Word(at + 8), 4) ^ Fold(Word(at + 12), 0);
  }
  for (; left > 0; ++at, --left) {
    crc = kTables[0][(crc ^ std::to_integer<std::uint32_t>(*at)) & 0xFF] ^ (crc >> 8);
  }
  return crc;
}

}  // namespace velmora::ndb
