#include "engine/block_index.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <iterator>
#include <ranges>
#include <tuple>
#include <utility>

#include "engine/read_runs.h"
#include "engine/run.h"
#include "engine/source.h"
#include "engine/source_window.h"
#include "store/format/block.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// In ascending order of trust.
enum class Proof : std::uint8_t {
  kNone,
  kTrailer,  ///< the trailer at the published place has the record's id and the signature of the block's place
  kWhole,    ///< besides, it has the record's size and the checksum of the bytes as they are stored
};

/// The end of the block with its trailer, as a file offset.
std::uint64_t EndOf(const Generation& layout, const PlacedBlock& block) {
  return block.offset + BlockSizeOnDisk(block.size, layout);
}

/// `bytes` begin at the block's place and have the whole block with its trailer, as far as the source goes. Of the ids
/// only the low 32 bits are compared. The checksum is taken of `mostSummed` bytes at most, and what it takes is taken
/// off.
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

/// Where a block of a list lies, in 12 bytes: looked up in the list, offsets would take most of the time of sorting.
struct Place {
  std::uint32_t offsetHigh;
  std::uint32_t offsetLow;
  std::uint32_t number;

  std::uint64_t Offset() const { return std::uint64_t{offsetHigh} << 32 | offsetLow; }
};

/// In the order of their places, the shorter first where several begin.
std::vector<Place> PlacesOf(const PlacedBlocks& blocks) {
  std::vector<Place> places;
  places.reserve(blocks.size());
  for (const PlacedBlock& block : blocks) {
    places.push_back({.offsetHigh = static_cast<std::uint32_t>(block.offset >> 32),
                      .offsetLow = static_cast<std::uint32_t>(block.offset),
                      .number = static_cast<std::uint32_t>(places.size())});
  }
  std::ranges::sort(places, [&](const Place& a, const Place& b) {
    if (a.Offset() != b.Offset()) return a.Offset() < b.Offset();
    const PlacedBlock ofA = blocks[a.number];
    const PlacedBlock ofB = blocks[b.number];
    return std::tuple(ofA.size, LowBid(ofA.bid)) < std::tuple(ofB.size, LowBid(ofB.bid));
  });
  return places;
}

/// Proves the blocks, by their numbers.
///
/// They are read in the order of their places, so no part of the source is read twice but for the
/// ends of its blocks, however many records point into it. Blocks of a sound store do not overlap; where
/// those of the records do, checksums are computed over as many bytes as the source has, and blocks beyond
/// that are proven by their trailers alone.
std::vector<Proof> ProveBlocks(const Source& source, const Generation& layout, RunContext& run,
                               const PlacedBlocks& blocks) {
  const std::vector<Place> places = PlacesOf(blocks);
  std::vector<Proof> proofs(blocks.size(), Proof::kNone);
  std::uint64_t mostSummed = source.Size();
  SourceWindow window(source);
  PlacedBlock before;
  for (auto at = places.begin(); at != places.end();) {
    run.control.PausePoint();
    const auto endOf = [&](const Place& place) { return EndOf(layout, blocks[place.number]); };
    const std::uint64_t begin = at->Offset();
    std::uint64_t end = 0;
    const auto last = EndOfRun(at, places.end(), std::mem_fn(&Place::Offset), endOf, end);
    const ByteView bytes = window.Peek(begin, end - begin);
    for (; at != last; ++at) {
      const PlacedBlock block = blocks[at->number];
      const bool again = at != places.begin() && RecordOf(block) == RecordOf(before);
      const ByteView its = bytes.Slice(block.offset - begin, EndOf(layout, block) - block.offset);
      proofs[at->number] = again ? proofs[std::prev(at)->number] : ProveBlock(layout, block, its, mostSummed);
      before = block;
    }
  }
  return proofs;
}

/// Of each low half the block that proves itself best, the first among equals; behind it the best of each other whole
/// id, by these.
PlacedBlocks BestOf(const PlacedBlocks& blocks, const std::vector<Proof>& proofs) {
  PlacedBlocks best;
  for (std::size_t begin = 0, end = 0; begin < blocks.size(); begin = end) {
    end = blocks.FirstFrom(blocks.KeyOf(begin) + 1);
    const auto leader = std::max_element(proofs.begin() + static_cast<std::ptrdiff_t>(begin),
                                         proofs.begin() + static_cast<std::ptrdiff_t>(end));
    const auto first = static_cast<std::size_t>(leader - proofs.begin());
    const auto idOf = [&](std::size_t i) { return blocks[i].bid; };
    std::vector<std::uint32_t> others;  // few: in a store the whole ids of a low half are one
    for (std::size_t i = begin; i < end; ++i) {
      if (idOf(i) != idOf(first)) others.push_back(static_cast<std::uint32_t>(i));
    }
    // By whole id, the best proof first, in file order among equals.
    std::ranges::sort(others, {}, [&](std::uint32_t i) {
      return std::tuple(idOf(i), Proof::kWhole > proofs[i], Proof::kTrailer > proofs[i], i);
    });
    others.erase(std::ranges::unique(others, {}, idOf).begin(), others.end());
    best.Add(blocks[first]);
    for (const std::uint32_t i : others) best.Add(blocks[i]);
  }
  return best;
}

}  // namespace

void BlockIndex::Add(std::span<const PlacedBlock> blocks) {
  for (const PlacedBlock& block : blocks) {
    pending_.push_back(block);
    if (pending_.size() == Sorter::kPiece) sorter_.Take(pending_);
  }
}

void BlockIndex::Settle(const Source& source, const Generation& layout, RunContext& run) {
  assert(blocks_.empty());
  sorter_.Take(pending_);
  pending_ = std::vector<PlacedBlock>();  // with `{}` it would keep its memory
  PlacedBlocks contested;                 // by others of their low halves
  std::optional<PlacedBlock> last;
  bool isAlone = true;  // the last, so far
  const auto keepIfAlone = [&] {
    if (last && isAlone) blocks_.Add(*last);
  };
  sorter_.Merge([&](const PlacedBlock& block) {
    if (last == block) return;  // copies side by side tell nothing more
    const bool isContested = last && LowIdOf(*last) == LowIdOf(block);
    if (!isContested) keepIfAlone();
    if (isContested && isAlone) contested.Add(*last);
    if (isContested) contested.Add(block);
    isAlone = !isContested;
    last = block;
  });
  keepIfAlone();
  if (contested.empty()) return;

  PlacedBlocks best = BestOf(contested, ProveBlocks(source, layout, run, contested));
  contested = {};
  sorter_.TakeSorted(std::move(blocks_));
  sorter_.TakeSorted(std::move(best));
  blocks_ = sorter_.Merge();
}

std::optional<BlockRecord> BlockIndex::Find(std::uint32_t low) const {
  const auto number = blocks_.NumberOf(low);
  return number ? std::optional(RecordOf(blocks_[*number])) : std::nullopt;
}

std::optional<PlacedBlock> BlockIndex::FindExact(Bid bid) const {
  const std::uint64_t low = LowBid(bid);
  const auto leader = blocks_.NumberOf(low);
  if (!leader) return std::nullopt;
  if (blocks_[*leader].bid == bid) return blocks_[*leader];
  const auto others = std::views::iota(*leader + 1, blocks_.FirstFrom(low + 1));
  const auto found = std::ranges::lower_bound(others, bid, {}, [this](std::size_t i) { return blocks_[i].bid; });
  if (found == others.end() || blocks_[*found].bid != bid) return std::nullopt;
  return blocks_[*found];
}

std::size_t BlockIndex::Memory() const {
  return pending_.capacity() * sizeof(PlacedBlock) + sorter_.Memory() + blocks_.Memory();
}

}  // namespace velmora::engine
