#include "engine/block_index.h"

#include <algorithm>
#include <iterator>
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

/// Records that wait at least before they are merged.
constexpr std::size_t kLeastMerge = 65536;

bool Lower(const PackedBlock& a, const PackedBlock& b) { return a.LowId() < b.LowId(); }

/// Where the records end that share the low half of their ids with the one at `begin`.
std::size_t EndOfGroup(std::span<const PackedBlock> sorted, std::size_t begin) {
  std::size_t end = begin + 1;
  while (end < sorted.size() && !Lower(sorted[begin], sorted[end])) ++end;
  return end;
}

/// Positions of the records whose ids have others, by their low halves.
std::vector<std::uint32_t> Contested(std::span<const PackedBlock> sorted) {
  std::vector<std::uint32_t> positions;
  for (std::size_t begin = 0, end = 0; begin < sorted.size(); begin = end) {
    end = EndOfGroup(sorted, begin);
    for (std::size_t i = begin; i < end && end - begin > 1; ++i) positions.push_back(static_cast<std::uint32_t>(i));
  }
  return positions;
}

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

/// Proves the blocks at the positions `chosen`; the others keep kNone. By position.
///
/// The blocks are read in the order of their places, so no part of the source is read twice but for the
/// ends of its blocks, however many records point into it. Blocks of a sound store do not overlap; where
/// those of the records do, checksums are computed over as many bytes as the source has, and blocks beyond
/// that are proven by their trailers alone.
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
    const auto beginOf = [&](std::uint32_t i) { return blocks[i].Block().offset; };
    const auto endOf = [&](std::uint32_t i) { return EndOf(layout, blocks[i].Block()); };
    const std::uint64_t begin = beginOf(*at);
    std::uint64_t end = 0;
    const auto last = EndOfRun(at, chosen.end(), beginOf, endOf, end);
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

}  // namespace

void BlockIndex::Add(std::span<const PlacedBlock> blocks) {
  for (const PlacedBlock& block : blocks) pending_.emplace_back(block);
  if (pending_.size() >= std::max(kLeastMerge, sorted_.size())) Merge();
}

void BlockIndex::Settle(const Source& source, const Generation& layout, RunContext& run) {
  Merge();
  pending_ = {};
  KeepTheBestOfEachId(source, layout, run);
  sorted_.shrink_to_fit();
}

void BlockIndex::Merge() {
  std::stable_sort(pending_.begin(), pending_.end(), Lower);
  const auto middle = static_cast<std::ptrdiff_t>(sorted_.size());
  sorted_.insert(sorted_.end(), pending_.begin(), pending_.end());
  pending_.clear();
  // Stable, as the sort is: what came first stays ahead.
  std::inplace_merge(sorted_.begin(), sorted_.begin() + middle, sorted_.end(), Lower);
  sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
}

void BlockIndex::KeepTheBestOfEachId(const Source& source, const Generation& layout, RunContext& run) {
  auto contested = Contested(sorted_);
  if (contested.empty()) return;
  const std::vector<Proof> proofs = ProveBlocks(source, layout, run, sorted_, std::move(contested));
  std::size_t kept = 0;
  for (std::size_t begin = 0, end = 0; begin < sorted_.size(); begin = end) {
    end = EndOfGroup(sorted_, begin);
    const auto best = std::max_element(proofs.begin() + static_cast<std::ptrdiff_t>(begin),
                                       proofs.begin() + static_cast<std::ptrdiff_t>(end));
    const PackedBlock leader = sorted_[static_cast<std::size_t>(best - proofs.begin())];
    std::vector<std::uint32_t> others;  // few: in a store the whole ids of a low half are one
    for (std::size_t i = begin; i < end; ++i) {
      if (sorted_[i].Id() != leader.Id()) others.push_back(static_cast<std::uint32_t>(i));
    }
    // By whole id, the best proof first, in file order among equals.
    std::ranges::sort(others, {}, [&](std::uint32_t i) {
      return std::tuple(sorted_[i].Id(), Proof::kWhole > proofs[i], Proof::kTrailer > proofs[i], i);
    });
    others.erase(std::ranges::unique(others, {}, [&](std::uint32_t i) { return sorted_[i].Id(); }).begin(),
                 others.end());
    std::vector<PackedBlock> blocks;
    for (const std::uint32_t i : others) blocks.push_back(sorted_[i]);
    sorted_[kept++] = leader;
    for (const PackedBlock& block : blocks) sorted_[kept++] = block;
  }
  sorted_.resize(kept);
}

std::span<const PackedBlock> BlockIndex::EntriesOf(std::uint32_t low) const {
  const auto [first, last] = std::equal_range(sorted_.begin(), sorted_.end(), PackedBlock({low, 0, 0}), Lower);
  return {first, last};
}

std::optional<BlockRecord> BlockIndex::Find(std::uint32_t low) const {
  const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), PackedBlock({low, 0, 0}), Lower);
  if (found == sorted_.end() || found->LowId() != low) return std::nullopt;
  return RecordOf(found->Block());
}

std::optional<PlacedBlock> BlockIndex::FindExact(Bid bid) const {
  const auto entries = EntriesOf(LowBid(bid));
  if (entries.empty()) return std::nullopt;
  if (entries.front().Id() == Value(bid)) return entries.front().Block();
  const auto others = entries.subspan(1);
  const auto found = std::ranges::lower_bound(others, Value(bid), {}, &PackedBlock::Id);
  if (found == others.end() || found->Id() != Value(bid)) return std::nullopt;
  return found->Block();
}

}  // namespace velmora::engine
