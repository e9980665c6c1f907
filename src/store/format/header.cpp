#include "store/format/header.h"

#include <algorithm>

#include "store/format/checksum.h"
#include "store/format/failures.h"
#include "store/format/little_endian.h"

namespace velmora {
namespace {

constexpr std::uint32_t kMagic = 0x4E444221;    // "!BDN"
constexpr std::uint16_t kMagicClient = 0x4D53;  // "SM": a personal store
constexpr std::uint16_t kVersionUnicode = 23;
constexpr std::uint16_t kVersionClient = 19;
constexpr std::byte kSentinel{0x80};

// Offsets of the fields that both layouts have in one place ...
constexpr std::size_t kDwMagic = 0x000;
constexpr std::size_t kDwCrcPartial = 0x004;
constexpr std::size_t kWMagicClient = 0x008;
constexpr std::size_t kWVer = 0x00A;
constexpr std::size_t kWVerClient = 0x00C;
constexpr std::size_t kBPlatformCreate = 0x00E;
constexpr std::size_t kBPlatformAccess = 0x00F;

/// ... and of the others.
struct Places {
  std::size_t bidNextP, bidNextB, dwUnique, rgnid;
  std::size_t ibFileEof, ibAMapLast, cbAMapFree, brefNbt, brefBbt, fAMapValid;
  std::size_t rgbFM, bSentinel, bCryptMethod;
};

constexpr Places kNarrow = {.bidNextP = 0x01C,
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

constexpr Places kWide = {.bidNextP = 0x020,
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
constexpr std::size_t kDwCrcFull = 0x20C;  // of the wide layout alone

static_assert(kWide.rgnid + 4 * kNidTypeCount + 8 == 0x0B4);  // ROOT follows the unused word behind the counters
static_assert(kWide.fAMapValid + 4 + 4 == kWide.rgbFM && kWide.rgbFM + 128 + 128 == kWide.bSentinel);
static_assert(kNarrow.fAMapValid + 4 == kNarrow.rgbFM && kNarrow.rgbFM + 128 + 128 == kNarrow.bSentinel);
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
  Store<std::uint16_t>(out, kWMagicClient, kMagicClient);
  Store<std::uint16_t>(out, kWVer, kVersionUnicode);
  Store<std::uint16_t>(out, kWVerClient, kVersionClient);
  Store<std::uint8_t>(out, kBPlatformCreate, 1);
  Store<std::uint8_t>(out, kBPlatformAccess, 1);
  Store(out, kWide.bidNextP, header.bidNextP);
  Store<std::uint32_t>(out, kWide.dwUnique, header.dwUnique);
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    Store<std::uint32_t>(out, kWide.rgnid + 4 * type, header.rgnid[type]);
  }
  Store<std::uint64_t>(out, kWide.ibFileEof, header.root.ibFileEof);
  Store<std::uint64_t>(out, kWide.ibAMapLast, header.root.ibAMapLast);
  Store<std::uint64_t>(out, kWide.cbAMapFree, header.root.cbAMapFree);
  StoreBref(out, kWide.brefNbt, header.root.brefNbt);
  StoreBref(out, kWide.brefBbt, header.root.brefBbt);
  Store<std::uint8_t>(out, kWide.fAMapValid, static_cast<std::uint8_t>(header.root.fAMapValid));
  std::fill(out.begin() + kWide.rgbFM, out.begin() + kWide.bSentinel, std::byte{0xFF});  // rgbFM, rgbFP
  out[kWide.bSentinel] = kSentinel;
  out[kWide.bCryptMethod] = static_cast<std::byte>(header.bCryptMethod);
  Store(out, kWide.bidNextB, header.bidNextB);
  const auto summed = std::span<const std::byte>(out).subspan(kWMagicClient);
  Store<std::uint32_t>(out, kDwCrcPartial, WeakCrc(summed.first(kCrcPartialSize)));
  Store<std::uint32_t>(out, kDwCrcFull, WeakCrc(summed.first(kCrcFullSize)));
  return out;
}

Result<Header> DecodeHeader(std::span<const std::byte, Header::kSize> bytes) {
  if (const auto magic = Load<std::uint32_t>(bytes, kDwMagic); magic != kMagic) {
    return Corrupt("header", magic, "the file does not begin with the magic of a store");
  }
  Header header;
  const auto version = Load<std::uint16_t>(bytes, kWVer);
  header.generation = GenerationOfVersion(version);
  if (header.generation == nullptr) {
    return Fail(FailureKind::kNotSupported, "header", version, "the version of the format is not known");
  }
  const Generation& generation = *header.generation;
  const Places& at = generation.wideFormat ? kWide : kNarrow;
  // The full checksum of the wide layout lies in the second sector. Where only the first one reached the disk, the
  // trees that it names are complete all the same.
  const auto summed = bytes.subspan<kWMagicClient>();
  if (const auto crc = Load<std::uint32_t>(bytes, kDwCrcPartial); crc != WeakCrc(summed.first(kCrcPartialSize))) {
    return Corrupt("header", crc, "the checksum does not fit");
  }
  if (bytes[at.bSentinel] != kSentinel) {
    return Corrupt("header", std::to_integer<std::uint64_t>(bytes[at.bSentinel]), "the sentinel is wrong");
  }
  header.bCryptMethod = static_cast<CryptMethod>(bytes[at.bCryptMethod]);
  if (header.bCryptMethod > CryptMethod::kCyclic) {
    return Fail(FailureKind::kNotSupported, "header", std::to_integer<std::uint64_t>(bytes[at.bCryptMethod]),
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
