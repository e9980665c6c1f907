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
constexpr std::uint16_t kVersionEarlyUnicode = 21;  // the same layout
constexpr std::uint16_t kVersionClient = 19;
constexpr std::byte kSentinel{0x80};

// Offsets of the fields.
constexpr std::size_t kDwMagic = 0x000;
constexpr std::size_t kDwCrcPartial = 0x004;
constexpr std::size_t kWMagicClient = 0x008;
constexpr std::size_t kWVer = 0x00A;
constexpr std::size_t kWVerClient = 0x00C;
constexpr std::size_t kBPlatformCreate = 0x00E;
constexpr std::size_t kBPlatformAccess = 0x00F;
constexpr std::size_t kBidNextP = 0x020;
constexpr std::size_t kDwUnique = 0x028;
constexpr std::size_t kRgnid = 0x02C;
constexpr std::size_t kIbFileEof = 0x0B8;
constexpr std::size_t kIbAMapLast = 0x0C0;
constexpr std::size_t kCbAMapFree = 0x0C8;
constexpr std::size_t kBrefNbt = 0x0D8;
constexpr std::size_t kBrefBbt = 0x0E8;
constexpr std::size_t kFAMapValid = 0x0F8;
constexpr std::size_t kRgbFM = 0x100;
constexpr std::size_t kBSentinel = 0x200;
constexpr std::size_t kBCryptMethod = 0x201;
constexpr std::size_t kBidNextB = 0x204;
constexpr std::size_t kDwCrcFull = 0x20C;
static_assert(kRgnid + 4 * kNidTypeCount + 8 == 0x0B4);  // ROOT follows the unused word behind the counters
static_assert(kFAMapValid + 4 + 4 == kRgbFM && kRgbFM + 128 + 128 == kBSentinel);
static_assert(kDwCrcFull + 4 + 4 + 32 == Header::kSize);

constexpr std::size_t kCrcPartialSize = 471;
constexpr std::size_t kCrcFullSize = 516;
static_assert(kWMagicClient + kCrcFullSize == kDwCrcFull);

Bref LoadBref(std::span<const std::byte> bytes, std::size_t offset) {
  return {LoadBid(bytes, offset), Load<std::uint64_t>(bytes, offset + 8)};
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
  Store(out, kBidNextP, header.bidNextP);
  Store<std::uint32_t>(out, kDwUnique, header.dwUnique);
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    Store<std::uint32_t>(out, kRgnid + 4 * type, header.rgnid[type]);
  }
  Store<std::uint64_t>(out, kIbFileEof, header.root.ibFileEof);
  Store<std::uint64_t>(out, kIbAMapLast, header.root.ibAMapLast);
  Store<std::uint64_t>(out, kCbAMapFree, header.root.cbAMapFree);
  StoreBref(out, kBrefNbt, header.root.brefNbt);
  StoreBref(out, kBrefBbt, header.root.brefBbt);
  Store<std::uint8_t>(out, kFAMapValid, static_cast<std::uint8_t>(header.root.fAMapValid));
  std::fill(out.begin() + kRgbFM, out.begin() + kBSentinel, std::byte{0xFF});  // rgbFM, rgbFP
  out[kBSentinel] = kSentinel;
  out[kBCryptMethod] = static_cast<std::byte>(header.bCryptMethod);
  Store(out, kBidNextB, header.bidNextB);
  const auto summed = std::span<const std::byte>(out).subspan(kWMagicClient);
  Store<std::uint32_t>(out, kDwCrcPartial, WeakCrc(summed.first(kCrcPartialSize)));
  Store<std::uint32_t>(out, kDwCrcFull, WeakCrc(summed.first(kCrcFullSize)));
  return out;
}

Result<Header> DecodeHeader(std::span<const std::byte, Header::kSize> bytes) {
  if (const auto magic = Load<std::uint32_t>(bytes, kDwMagic); magic != kMagic) {
    return Corrupt("header", magic, "the file does not begin with the magic of a store");
  }
  if (const auto version = Load<std::uint16_t>(bytes, kWVer);
      version != kVersionUnicode && version != kVersionEarlyUnicode) {
    return Fail(FailureKind::kNotSupported, "header", version, "only stores of the Unicode format can be opened");
  }
  // The full checksum lies in the second sector. Where only the first one reached the disk, the trees that
  // it names are complete all the same.
  const auto summed = bytes.subspan<kWMagicClient>();
  if (const auto crc = Load<std::uint32_t>(bytes, kDwCrcPartial); crc != WeakCrc(summed.first(kCrcPartialSize))) {
    return Corrupt("header", crc, "the checksum does not fit");
  }
  if (bytes[kBSentinel] != kSentinel) {
    return Corrupt("header", std::to_integer<std::uint64_t>(bytes[kBSentinel]), "the sentinel is wrong");
  }
  Header header;
  header.bCryptMethod = static_cast<CryptMethod>(bytes[kBCryptMethod]);
  if (header.bCryptMethod > CryptMethod::kCyclic) {
    return Fail(FailureKind::kNotSupported, "header", std::to_integer<std::uint64_t>(bytes[kBCryptMethod]),
                "the blocks are encoded in a way that cannot be read");
  }
  header.bidNextP = LoadBid(bytes, kBidNextP);
  header.bidNextB = LoadBid(bytes, kBidNextB);
  header.dwUnique = Load<std::uint32_t>(bytes, kDwUnique);
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    header.rgnid[type] = Load<std::uint32_t>(bytes, kRgnid + 4 * type);
  }
  header.root = {Load<std::uint64_t>(bytes, kIbFileEof),
                 Load<std::uint64_t>(bytes, kIbAMapLast),
                 Load<std::uint64_t>(bytes, kCbAMapFree),
                 LoadBref(bytes, kBrefNbt),
                 LoadBref(bytes, kBrefBbt),
                 static_cast<AMapValid>(bytes[kFAMapValid])};
  return header;
}

}  // namespace velmora
