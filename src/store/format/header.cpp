#include "store/format/header.h"

#include <algorithm>

#include "store/format/checksum.h"
#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora {
namespace {

constexpr std::uint32_t kMagic = 0x4E444221;  // "!BDN"
constexpr std::uint16_t kVersionUnicode = 23;
constexpr std::uint16_t kVersionClient = 19;
constexpr std::byte kSentinel{0x80};

// Offsets of the fields that both layouts have in one place.
constexpr std::size_t kDwMagic = 0x000;
constexpr std::size_t kDwCrcPartial = 0x004;
constexpr std::size_t kWVerClient = 0x00C;
constexpr std::size_t kBPlatformCreate = 0x00E;
constexpr std::size_t kBPlatformAccess = 0x00F;

constexpr std::size_t kDwCrcFull = 0x20C;  // of the wide layout alone

static_assert(kWideHeader.rgnid + 4 * kNidTypeCount + 8 == 0x0B4);  // ROOT follows the unused word behind the counters
static_assert(kWideHeader.fAMapValid + 4 + 4 == kWideHeader.rgbFM &&
              kWideHeader.rgbFM + 128 + 128 == kWideHeader.bSentinel);
static_assert(kNarrowHeader.fAMapValid + 4 == kNarrowHeader.rgbFM &&
              kNarrowHeader.rgbFM + 128 + 128 == kNarrowHeader.bSentinel);
static_assert(kDwCrcFull + 4 + 4 + 32 == Header::kSize);

constexpr std::size_t kCrcPartialSize = 471;
constexpr std::size_t kCrcFullSize = 516;
static_assert(kWMagicClient + kCrcFullSize == kDwCrcFull);

Bref LoadBref(std::span<const std::byte> bytes, std::size_t offset, const Generation& generation) {
  return {Bid{generation.LoadWord(bytes, offset)}, generation.LoadWord(bytes, offset + generation.idWidth)};
}

void StoreBref(std::span<std::byte> bytes, std::size_t offset, const Bref& ref) {
  Store(bytes, offset, ref.bid);
  Store<std::uint64_t>(bytes, offset + 8, ref.ib);
}

}  // namespace

std::array<std::byte, Header::kSize> Encode(const Header& header) {
  std::array<std::byte, Header::kSize> out{};
  Store<std::uint32_t>(out, kDwMagic, kMagic);
  Store<std::uint16_t>(out, kWMagicClient, kMagicClientPst);
  Store<std::uint16_t>(out, kWVer, kVersionUnicode);
  Store<std::uint16_t>(out, kWVerClient, kVersionClient);
  Store<std::uint8_t>(out, kBPlatformCreate, 1);
  Store<std::uint8_t>(out, kBPlatformAccess, 1);
  Store(out, kWideHeader.bidNextP, header.bidNextP);
  Store<std::uint32_t>(out, kWideHeader.dwUnique, header.dwUnique);
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    Store<std::uint32_t>(out, kWideHeader.rgnid + 4 * type, header.rgnid[type]);
  }
  Store<std::uint64_t>(out, kWideHeader.ibFileEof, header.root.ibFileEof);
  Store<std::uint64_t>(out, kWideHeader.ibAMapLast, header.root.ibAMapLast);
  Store<std::uint64_t>(out, kWideHeader.cbAMapFree, header.root.cbAMapFree);
  StoreBref(out, kWideHeader.brefNbt, header.root.brefNbt);
  StoreBref(out, kWideHeader.brefBbt, header.root.brefBbt);
  Store<std::uint8_t>(out, kWideHeader.fAMapValid, static_cast<std::uint8_t>(header.root.fAMapValid));
  std::fill(out.begin() + kWideHeader.rgbFM, out.begin() + kWideHeader.bSentinel, std::byte{0xFF});  // rgbFM, rgbFP
  out[kWideHeader.bSentinel] = kSentinel;
  out[kWideHeader.bCryptMethod] = static_cast<std::byte>(header.bCryptMethod);
  Store(out, kWideHeader.bidNextB, header.bidNextB);
  const auto summed = std::span<const std::byte>(out).subspan(kWMagicClient);
  Store<std::uint32_t>(out, kDwCrcPartial, WeakCrc(summed.first(kCrcPartialSize)));
  Store<std::uint32_t>(out, kDwCrcFull, WeakCrc(summed.first(kCrcFullSize)));
  return out;
}

Header DecodeHeader(std::span<const std::byte, Header::kSize> bytes) {
  if (const auto magic = Load<std::uint32_t>(bytes, kDwMagic); magic != kMagic) {
    RaiseCorrupt(ObjectKind::kHeader, magic, "the file does not begin with the magic of a store");
  }
  Header header;
  const auto version = Load<std::uint16_t>(bytes, kWVer);
  header.generation = GenerationOfVersion(version);
  if (header.generation == nullptr) {
    Raise(FailureKind::kNotSupported, ObjectKind::kHeader, version, "the version of the format is not known");
  }
  const Generation& generation = *header.generation;
  const HeaderPlaces& at = PlacesInHeader(generation);
  // The full checksum of the wide layout lies in the second sector. Where only the first one reached the disk, the
  // trees that it names are complete all the same.
  const auto summed = bytes.subspan<kWMagicClient>();
  if (const auto crc = Load<std::uint32_t>(bytes, kDwCrcPartial); crc != WeakCrc(summed.first(kCrcPartialSize))) {
    RaiseCorrupt(ObjectKind::kHeader, crc, "the checksum does not fit");
  }
  if (bytes[at.bSentinel] != kSentinel) {
    RaiseCorrupt(ObjectKind::kHeader, std::to_integer<std::uint64_t>(bytes[at.bSentinel]), "the sentinel is wrong");
  }
  header.bCryptMethod = static_cast<CryptMethod>(bytes[at.bCryptMethod]);
  if (header.bCryptMethod > CryptMethod::kCyclic) {
    Raise(FailureKind::kNotSupported, ObjectKind::kHeader, std::to_integer<std::uint64_t>(bytes[at.bCryptMethod]),
          "the blocks are encoded in a way that cannot be read");
  }
  header.bidNextP = Bid{generation.LoadWord(bytes, at.bidNextP)};
  header.bidNextB = Bid{generation.LoadWord(bytes, at.bidNextB)};
  header.dwUnique = Load<std::uint32_t>(bytes, at.dwUnique);
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    header.rgnid[type] = Load<std::uint32_t>(bytes, at.rgnid + 4 * type);
  }
  header.root = {generation.LoadWord(bytes, at.ibFileEof),  generation.LoadWord(bytes, at.ibAMapLast),
                 generation.LoadWord(bytes, at.cbAMapFree), LoadBref(bytes, at.brefNbt, generation),
                 LoadBref(bytes, at.brefBbt, generation),   static_cast<AMapValid>(bytes[at.fAMapValid])};
  return header;
}

}  // namespace velmora
