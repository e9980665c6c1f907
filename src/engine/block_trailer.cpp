#include "engine/block_trailer.h"

#include <array>

#include "engine/signature.h"
#include "engine/zero_runs.h"

namespace velmora::engine {
namespace {

/// Where the published formats put the trailer: the last bytes of the block, which is rounded up.
struct TrailerPlace {
  std::uint32_t rounding;
  std::uint32_t trailerSize;
  std::uint32_t offId;
};

TrailerPlace PlaceOf(const PageLayout& layout) {
  switch (layout.formatId) {
    case FORMAT_UNICODE:
      return {64, 16, 8};
    case FORMAT_UNICODE_4K:
      return {512, 24, 8};
    default:
      return {64, 12, 4};
  }
}

constexpr std::uint32_t kOffSignature = 2;

}  // namespace

bool HasBlockTrailer(const PageLayout& layout, std::uint64_t offset, ByteView tail) {
  const auto first = FirstNonZero(tail.Bytes(), 0);
  if (!first) return false;
  const std::uint64_t slot = (*first + 1) / 16 * 16;
  const std::uint16_t signature = tail.U16(slot + (layout.wideFormat ? 2 : 6));
  return signature != 0 && signature == ComputeSig(offset, tail.U32(slot + 8));
}

bool TrailerProves(const BlockRecord& record, const platform::ByteSource& source, const PageLayout& layout) {
  const TrailerPlace place = PlaceOf(layout);
  const std::uint64_t end =
      (std::uint64_t{record.size} + place.trailerSize + place.rounding - 1) / place.rounding * place.rounding;
  std::array<std::byte, 16> bytes{};
  const auto delivered = source.ReadAt(record.offset + end - place.trailerSize, bytes);
  if (!delivered) return false;
  const ByteView trailer = ByteView(bytes).Slice(0, *delivered);
  const std::uint16_t signature = trailer.U16(kOffSignature);
  return signature != 0 && signature == ComputeSig(record.offset, record.bid) && trailer.U32(place.offId) == record.bid;
}

}  // namespace velmora::engine
