#include "engine/block_index.h"

#include <algorithm>

#include "engine/block_proof.h"

namespace velmora::engine {
namespace {

/// Records that wait at least before they are merged.
constexpr std::size_t kLeastMerge = 65536;

bool LowerBid(const BlockRecord& a, const BlockRecord& b) { return a.bid < b.bid; }

/// The positions of the records whose id another one has too.
std::vector<std::uint32_t> Contested(std::span<const BlockRecord> records) {
  std::vector<std::uint32_t> positions;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const bool likeLast = i > 0 && records[i - 1].bid == records[i].bid;
    const bool likeNext = i + 1 < records.size() && records[i + 1].bid == records[i].bid;
    if (likeLast || likeNext) positions.push_back(static_cast<std::uint32_t>(i));
  }
  return positions;
}

}  // namespace

void SortByBid(std::span<BlockRecord> records) { std::stable_sort(records.begin(), records.end(), LowerBid); }

void BlockIndex::Add(std::span<const BlockRecord> records) {
  pending_.insert(pending_.end(), records.begin(), records.end());
  if (pending_.size() >= std::max(kLeastMerge, sorted_.size())) Merge();
}

void BlockIndex::Settle(EngineState& state, RunContext& run) {
  Merge();
  pending_ = {};
  KeepTheBestOfEachId(state, run);
  sorted_.shrink_to_fit();
}

void BlockIndex::Merge() {
  SortByBid(pending_);
  const auto middle = static_cast<std::ptrdiff_t>(sorted_.size());
  sorted_.insert(sorted_.end(), pending_.begin(), pending_.end());
  pending_.clear();
  // Stable, as the sort is: what came first stays ahead.
  std::inplace_merge(sorted_.begin(), sorted_.begin() + middle, sorted_.end(), LowerBid);
  sorted_.erase(std::unique(sorted_.begin(), sorted_.end()), sorted_.end());
}

void BlockIndex::KeepTheBestOfEachId(EngineState& state, RunContext& run) {
  auto contested = Contested(sorted_);
  if (contested.empty()) return;
  auto proofs = ProveBlocks(state, run, sorted_, std::move(contested));
  std::size_t kept = 0;
  for (std::size_t i = 0; i < sorted_.size(); ++i) {
    if (kept == 0 || sorted_[kept - 1].bid != sorted_[i].bid) {
      ++kept;
    } else if (proofs[i] <= proofs[kept - 1]) {
      continue;
    }
    sorted_[kept - 1] = sorted_[i];
    proofs[kept - 1] = proofs[i];
  }
  sorted_.resize(kept);
}

std::optional<BlockRecord> BlockIndex::Find(std::uint32_t id) const {
  const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), BlockRecord{.bid = id}, LowerBid);
  if (found == sorted_.end() || found->bid != id) return std::nullopt;
  return *found;
}

void BlockIndex::Clear() {
  sorted_ = {};
  pending_ = {};
}

}  // namespace velmora::engine
