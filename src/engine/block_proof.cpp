#include "engine/block_proof.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "engine/source_window.h"
#include "store/format/block.h"
#include "store/format/checksum.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

/// Most bytes that are read at once, and the widest gap between two blocks that is read along with them.
constexpr std::uint64_t kMostAtOnce = 1 << 20;
constexpr std::uint64_t kGap = 16384;

}  // namespace

std::uint64_t EndOf(const Generation& layout, const PlacedBlock& block) {
  return block.offset + BlockSizeOnDisk(block.size, layout);
}

Proof ProveBlock(const Generation& layout, const PlacedBlock& block, ByteView bytes, std::uint64_t& mostSummed) {
  const std::size_t wholeSize = BlockSizeOnDisk(block.size, layout);
  if (bytes.Size() < wholeSize) return Proof::kNone;
  const auto whole = bytes.Bytes().first(wholeSize);
  const BlockTrailer trailer = DecodeBlockTrailer(whole.last(layout.blockTrailerSize), layout);
  if (LowBid(trailer.bid) != LowBid(block.bid)) return Proof::kNone;
  if (trailer.wSig != ComputeSig(block.offset, Value(block.bid))) return Proof::kNone;
  if (trailer.cb != block.size || block.size > mostSummed) return Proof::kTrailer;
  mostSummed -= block.size;
  return trailer.dwCRC == WeakCrc(whole.first(block.size)) ? Proof::kWhole : Proof::kTrailer;
}

std::vector<Proof> ProveBlocks(const Source& source, const Generation& layout, RunContext& run,
                               std::span<const PackedBlock> blocks, std::vector<std::uint32_t> chosen) {
  std::ranges::sort(chosen, {}, [&](std::uint32_t i) {
    const PlacedBlock block = blocks[i].Block();
    return std::tuple(block.offset, block.size, LowBid(block.bid));
  });

  std::vector<Proof> proofs(blocks.size(), Proof::kNone);
  std::uint64_t mostSummed = source.Size();
  SourceWindow window(source);
  for (auto at = chosen.begin(); at != chosen.end();) {
    run.control.PausePoint();
    const std::uint64_t begin = blocks[*at].Block().offset;
    std::uint64_t end = begin;
    auto last = at;
    for (; last != chosen.end(); ++last) {
      const PlacedBlock block = blocks[*last].Block();
      const std::uint64_t reach = std::max(end, EndOf(layout, block));
      if (last != at && (block.offset > end + kGap || reach - begin > kMostAtOnce)) break;
      end = reach;
    }
    const ByteView bytes = window.Peek(begin, end - begin);
    for (; at != last; ++at) {
      const PlacedBlock block = blocks[*at].Block();
      const bool again = at != chosen.begin() && RecordOf(block) == RecordOf(blocks[*std::prev(at)].Block());
      const ByteView its = bytes.Slice(block.offset - begin, EndOf(layout, block) - block.offset);
      proofs[*at] = again ? proofs[*std::prev(at)] : ProveBlock(layout, block, its, mostSummed);
    }
  }
  return proofs;
}

}  // namespace velmora::engine
