#include "engine/block_proof.h"

#include <algorithm>
#include <tuple>

#include "engine/engine_state.h"
#include "engine/run.h"
#include "engine/source_window.h"
#include "store/format/byte_view.h"
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

TrailerPlace PlaceOf(const PageLayout& layout) {
  switch (layout.formatId) {
    case FORMAT_UNICODE:
      return {64, 16, 8, 4};
    case FORMAT_UNICODE_4K:
      return {512, 24, 8, 4};
    default:
      return {64, 12, 4, 8};
  }
}

/// Most bytes that are read at once, and the widest gap between two blocks that is read along with them.
constexpr std::uint64_t kMostAtOnce = 1 << 20;
constexpr std::uint64_t kGap = 16384;

class Prover {
 public:
  explicit Prover(const EngineState& state) : place_(PlaceOf(state.layout)), checksumsLeft_(state.source->Size()) {}

  /// The end of the block with its trailer.
  std::uint64_t EndOf(const BlockRecord& record) const {
    const std::uint64_t length = std::uint64_t{record.size} + place_.trailerSize + place_.rounding - 1;
    return record.offset + length / place_.rounding * place_.rounding;
  }

  /// `block` begins at the record's offset and has the whole block, as far as the source goes.
  Proof Prove(const BlockRecord& record, ByteView block) {
    const ByteView trailer = block.Slice(EndOf(record) - record.offset - place_.trailerSize, place_.trailerSize);
    if (trailer.Size() < place_.trailerSize || trailer.U32(place_.offId) != record.bid) return Proof::kNone;
    if (trailer.U16(kOffSignature) != ComputeSig(record.offset, record.bid)) return Proof::kNone;
    if (trailer.U16(kOffSize) != record.size || record.size > checksumsLeft_) return Proof::kTrailer;
    checksumsLeft_ -= record.size;
    const bool fits = trailer.U32(place_.offChecksum) == WeakCrc(block.Bytes().first(record.size));
    return fits ? Proof::kWhole : Proof::kTrailer;
  }

 private:
  const TrailerPlace place_;
  std::uint64_t checksumsLeft_;  ///< bytes
};

}  // namespace

std::vector<Proof> ProveBlocks(EngineState& state, RunContext& run, std::span<const BlockRecord> records,
                               std::vector<std::uint32_t> chosen) {
  std::sort(chosen.begin(), chosen.end(), [&](std::uint32_t a, std::uint32_t b) {
    const auto key = [](const BlockRecord& record) { return std::tie(record.offset, record.size, record.bid); };
    return key(records[a]) < key(records[b]);
  });

  std::vector<Proof> proofs(records.size(), Proof::kNone);
  Prover prover(state);
  SourceWindow window(state);
  for (auto at = chosen.begin(); at != chosen.end();) {
    run.control.PausePoint();
    const std::uint64_t begin = records[*at].offset;
    std::uint64_t end = begin;
    auto last = at;
    for (; last != chosen.end() && records[*last].offset <= end + kGap; ++last) {
      const std::uint64_t reach = std::max(end, prover.EndOf(records[*last]));
      if (reach - begin > kMostAtOnce) break;
      end = reach;
    }
    const ByteView bytes = window.Peek(begin, end - begin);
    for (; at != last; ++at) {
      const BlockRecord& record = records[*at];
      const bool again = at != chosen.begin() && record == records[*std::prev(at)];
      const ByteView block = bytes.Slice(record.offset - begin, prover.EndOf(record) - record.offset);
      proofs[*at] = again ? proofs[*std::prev(at)] : prover.Prove(record, block);
    }
  }
  return proofs;
}

}  // namespace velmora::engine
