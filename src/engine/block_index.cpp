#include "engine/block_index.h"

#include <algorithm>

#include "engine/block_proof.h"

namespace velmora::engine {
namespace {

/// Records that wait at least before they are merged.
constexpr std::size_t kLeastMerge = 65536;

struct Proven {
  PlacedBlock block;
  Proof proof;
};

/// Of blocks that share the low half of an id: the best of all, then the best of each other id.
std::vector<PlacedBlock> BestOfEachId(std::vector<Proven> group) {
  std::ranges::stable_sort(group, std::ranges::greater{}, &Proven::proof);
  const auto bid = [](const Proven& proven) { return Value(proven.block.bid); };
  const std::uint64_t first = bid(group.front());
  std::ranges::stable_sort(group, [&](const Proven& a, const Proven& b) {
    return std::pair(bid(a) != first, bid(a)) < std::pair(bid(b) != first, bid(b));
  });
  group.erase(std::ranges::unique(group, {}, bid).begin(), group.end());
  std::vector<PlacedBlock> best;
  for (const Proven& proven : group) best.push_back(proven.block);
  return best;
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
  const auto isCopy = [](const Entry& a, const Entry& b) { return a.Block() == b.Block(); };
  sorted_.erase(std::unique(sorted_.begin(), sorted_.end(), isCopy), sorted_.end());
}

void BlockIndex::KeepTheBestOfEachId(const Source& source, const Generation& layout, RunContext& run) {
  const auto endOf = [&](std::size_t begin) {
    std::size_t end = begin + 1;
    while (end < sorted_.size() && !Lower(sorted_[begin], sorted_[end])) ++end;
    return end;
  };
  std::vector<PlacedBlock> contested;
  for (std::size_t begin = 0, end = 0; begin < sorted_.size(); begin = end) {
    end = endOf(begin);
    for (std::size_t i = begin; i < end && end - begin > 1; ++i) contested.push_back(sorted_[i].Block());
  }
  if (contested.empty()) return;
  const std::vector<Proof> proofs = ProveBlocks(source, layout, run, contested);

  std::size_t kept = 0;
  std::size_t proven = 0;
  for (std::size_t begin = 0, end = 0; begin < sorted_.size(); begin = end) {
    end = endOf(begin);
    if (end - begin == 1) {
      sorted_[kept++] = sorted_[begin];
      continue;
    }
    std::vector<Proven> group;
    for (; group.size() < end - begin; ++proven) group.push_back({contested[proven], proofs[proven]});
    for (const PlacedBlock& block : BestOfEachId(std::move(group))) sorted_[kept++] = Entry(block);
  }
  sorted_.resize(kept);
}

std::span<const BlockIndex::Entry> BlockIndex::EntriesOf(std::uint32_t low) const {
  const auto [first, last] = std::equal_range(sorted_.begin(), sorted_.end(), Entry({low, 0, 0}), Lower);
  return {first, last};
}

std::optional<BlockRecord> BlockIndex::Find(std::uint32_t low) const {
  const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), Entry({low, 0, 0}), Lower);
  if (found == sorted_.end() || static_cast<std::uint32_t>(found->bid) != low) return std::nullopt;
  return RecordOf(found->Block());
}

std::optional<PlacedBlock> BlockIndex::FindExact(Bid bid) const {
  const auto entries = EntriesOf(LowBid(bid));
  if (entries.empty()) return std::nullopt;
  if (entries.front().bid == Value(bid)) return entries.front().Block();
  const auto others = entries.subspan(1);
  const auto found = std::ranges::lower_bound(others, Value(bid), {}, &Entry::bid);
  if (found == others.end() || found->bid != Value(bid)) return std::nullopt;
  return found->Block();
}

}  // namespace velmora::engine
