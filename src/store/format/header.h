// The header: at offset 0, in two layouts. A writer forms that of a Unicode store and leaves the area up to the
// density list zero.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/encoding.h"
#include "store/format/failures.h"
#include "store/format/page.h"

namespace velmora {

/// What kind of store it is, and where the header says so in both layouts.
inline constexpr std::size_t kWMagicClient = 0x008;
inline constexpr std::uint16_t kMagicClientPst = 0x4D53;  // "SM"
inline constexpr std::uint16_t kMagicClientOst = 0x4F53;  // "SO"
inline constexpr std::uint16_t kMagicClientPab = 0x4241;  // "AB"

/// Where it says which version of the format it is of, likewise.
inline constexpr std::size_t kWVer = 0x00A;

/// Offsets of the fields whose place depends on the layout.
struct HeaderPlaces {
  std::size_t bidNextP, bidNextB, dwUnique, rgnid;
  std::size_t ibFileEof, ibAMapLast, cbAMapFree, brefNbt, brefBbt, fAMapValid;
  std::size_t rgbFM, bSentinel, bCryptMethod;
};

inline constexpr HeaderPlaces kNarrowHeader = {.bidNextP = 0x01C,
                                               .bidNextB = 0x018,
                                               .dwUnique = 0x020,
                                               .rgnid = 0x024,
                                               .ibFileEof = 0x0A8,
                                               .ibAMapLast = 0x0AC,
                                               .cbAMapFree = 0x0B0,
                                               .brefNbt = 0x0B8,
                                               .brefBbt = 0x0C0,
                                               .fAMapValid = 0x0C8,
                                               .rgbFM = 0x0CC,
                                               .bSentinel = 0x1CC,
                                               .bCryptMethod = 0x1CD};

inline constexpr HeaderPlaces kWideHeader = {.bidNextP = 0x020,
                                             .bidNextB = 0x204,
                                             .dwUnique = 0x028,
                                             .rgnid = 0x02C,
                                             .ibFileEof = 0x0B8,
                                             .ibAMapLast = 0x0C0,
                                             .cbAMapFree = 0x0C8,
                                             .brefNbt = 0x0D8,
                                             .brefBbt = 0x0E8,
                                             .fAMapValid = 0x0F8,
                                             .rgbFM = 0x100,
                                             .bSentinel = 0x200,
                                             .bCryptMethod = 0x201};

constexpr const HeaderPlaces& PlacesInHeader(const Generation& generation) {
  return generation.wideFormat ? kWideHeader : kNarrowHeader;
}

/// What the header says of the maps.
enum class AMapValid : std::uint8_t {
  kInvalid = 0,  ///< whoever writes has to rebuild them first
  kValid1 = 1,   ///< what old versions write
  kValid2 = 2,
};

struct Root {
  std::uint64_t ibFileEof = 0;
  std::uint64_t ibAMapLast = 0;
  std::uint64_t cbAMapFree = 0;
  Bref brefNbt;
  Bref brefBbt;
  AMapValid fAMapValid = AMapValid::kInvalid;
};

/// The fields of the header that differ between stores.
struct Header {
  static constexpr std::size_t kSize = 564;  ///< of the wide layout, and less than any store has

  Bid bidNextP{};
  Bid bidNextB{};
  std::uint32_t dwUnique = 0;
  std::array<std::uint32_t, kNidTypeCount> rgnid{};
  Root root;
  CryptMethod bCryptMethod = CryptMethod::kPermute;
  const Generation* generation = &generations::kUnicode;  ///< what is written has this one
};

std::array<std::byte, Header::kSize> Encode(const Header& header);

/// The header of a store of any generation. Raises kCorrupt when the magic, the sentinel or the checksum of the first
/// sector does not fit, kNotSupported for versions that are not known and for encodings that have no published key.
[[nodiscard]] Header DecodeHeader(std::span<const std::byte, Header::kSize> bytes);

}  // namespace velmora
