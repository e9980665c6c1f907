#include "engine/block_proof.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include "engine/source_window.h"
#include "store/format/checksum.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

/// Where the published formats put the trailer: the last bytes of the block, which is rounded up. Its size
/// and signature lead in each of them.
struct TrailerPlace {
  std::uint32_t rounding;
  std::uint32_t trailerSize;
  std::uint32_t offId;
  std::uint32_t offChecksum;
};

constexpr std::uint32_t kOffSize = 0;
constexpr std::uint32_t kOffSignature = 2;
constexpr std::uint32_t kOffInflatedSize = 18;  ///< 4K format alone

TrailerPlace PlaceOf(const Generation& layout) {
  switch (layout.formatId) {
    case FORMAT_UNICODE:
      return {64, 16, 8, 4};
    case FORMAT_UNICODE_4K:
      return {512, 24, 8, 4};
    default:
      return {64, 12, 4, 8};
  }
}

ByteView Trailer(const Generation& layout, const PlacedBlock& block, ByteView bytes) {
  const std::uint32_t size = PlaceOf(layout).trailerSize;
  return bytes.Slice(EndOf(layout, block) - block.offset - size, size);
}

/// Most bytes that are read at once, and the widest gap between two blocks that is read along with them.
constexpr std::uint64_t kMostAtOnce = 1 << 20;
constexpr std::uint64_t kGap = 16384;

}  // namespace

std::uint64_t EndOf(const Generation& layout, const PlacedBlock& block) {
  const TrailerPlace place = PlaceOf(layout);
  const std::uint64_t length = std::uint64_t{block.size} + place.trailerSize + place.rounding - 1;
  return block.offset + length / place.rounding * place.rounding;
}

Proof ProveBlock(const Generation& layout, const PlacedBlock& block, ByteView bytes, std::uint64_t& mostSummed) {
  const TrailerPlace place = PlaceOf(layout);
  const ByteView trailer = Trailer(layout, block, bytes);
  if (trailer.Size() < place.trailerSize || trailer.U32(place.offId) != LowBid(block.bid)) return Proof::kNone;
  if (trailer.U16(kOffSignature) != ComputeSig(block.offset, Value(block.bid))) return Proof::kNone;
  if (trailer.U16(kOffSize) != block.size || block.size > mostSummed) return Proof::kTrailer;
  mostSummed -= block.size;
  const bool fits = trailer.U32(place.offChecksum) == WeakCrc(bytes.Bytes().first(block.size));
  return fits ? Proof::kWhole : Proof::kTrailer;
}

ProvenTrailer TrailerOf(const Generation& layout, const PlacedBlock& block, ByteView bytes) {
  const ByteView trailer = Trailer(layout, block, bytes);
  const std::uint32_t offId = PlaceOf(layout).offId;
  return {Bid{layout.wideFormat ? trailer.U64(offId) : trailer.U32(offId)},
          layout.formatId == FORMAT_UNICODE_4K ? trailer.U16(kOffInflatedSize) : block.size};
}

std::vector<Proof> ProveBlocks(const Source& source, const Generation& layout, RunContext& run,
                               std::span<const PlacedBlock> blocks) {
  std::vector<std::uint32_t> order(blocks.size());
  std::iota(order.begin(), order.end(), 0u);
  std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    const auto key = [](const PlacedBlock& block) { return std::tuple(block.offset, block.size, LowBid(block.bid)); };
    return key(blocks[a]) < key(blocks[b]);
  });

  std::vector<Proof> proofs(blocks.size(), Proof::kNone);
  std::uint64_t mostSummed = source.Size();
  SourceWindow window(source);
  for (auto at = order.begin(); at != order.end();) {
    run.control.PausePoint();
    const std::uint64_t begin = blocks[*at].offset;
    std::uint64_t end = begin;
    auto last = at;
    for (; last != order.end() && (last == at || blocks[*last].offset <= end + kGap); ++last) {
      const std::uint64_t reach = std::max(end, EndOf(layout, blocks[*last]));
      if (reach - begin > kMostAtOnce) break;
      end = reach;
    }
    const ByteView bytes = window.Peek(begin, end - begin);
    for (; at != last; ++at) {
      const PlacedBlock& block = blocks[*at];
      const bool again = at != order.begin() && RecordOf(block) == RecordOf(blocks[*std::prev(at)]);
      const ByteView its = bytes.Slice(block.offset - begin, EndOf(layout, block) - block.offset);
      proofs[*at] = again ? proofs[*std::prev(at)] : ProveBlock(layout, block, its, mostSummed);
    }
  }
  return proofs;
}

}  // namespace velmora::engine
