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

/// The header of a store of any generation. kCorrupt when the magic, the sentinel or the checksum of the first sector
/// does not fit, kNotSupported for versions that are not known and for encodings that have no published key.
[[nodiscard]] Result<Header> DecodeHeader(std::span<const std::byte, Header::kSize> bytes);

}  // namespace velmora
