#include "engine/block_index.h"

#include <algorithm>

#include "engine/block_trailer.h"

namespace velmora::engine {
namespace {

/// Records that wait at least before they are merged.
constexpr std::size_t kLeastMerge = 65536;

bool LowerBid(const BlockRecord& a, const BlockRecord& b) { return a.bid < b.bid; }
bool SameBid(const BlockRecord& a, const BlockRecord& b) { return a.bid == b.bid; }

/// The record of a look-up among those of one `bid` in one chunk.
const BlockRecord& Best(std::span<const BlockRecord> group, const platform::ByteSource& source,
                        const PageLayout& layout) {
  const BlockRecord& first = group.front();
  if (std::all_of(group.begin(), group.end(), [&](const BlockRecord& record) { return record == first; })) return first;
  const auto proven = std::find_if(group.begin(), group.end(),
                                   [&](const BlockRecord& record) { return TrailerProves(record, source, layout); });
  return proven == group.end() ? first : *proven;
}

}  // namespace

void SortChunk(std::span<BlockRecord> chunk) { std::stable_sort(chunk.begin(), chunk.end(), LowerBid); }

void BlockIndex::AddChunk(std::span<const BlockRecord> chunk, const platform::ByteSource& source,
                          const PageLayout& layout) {
  while (!chunk.empty()) {
    const auto end = std::upper_bound(chunk.begin(), chunk.end(), chunk.front(), LowerBid);
    const auto group = chunk.first(static_cast<std::size_t>(end - chunk.begin()));
    pending_.push_back(Best(group, source, layout));
    chunk = chunk.subspan(group.size());
  }
  if (pending_.size() >= std::max(kLeastMerge, sorted_.size())) Merge();
}

void BlockIndex::Settle() {
  Merge();
  sorted_.shrink_to_fit();
  pending_ = {};
}

void BlockIndex::Build(std::vector<BlockRecord> records, const platform::ByteSource& source, const PageLayout& layout) {
  Clear();
  for (std::span<BlockRecord> rest(records); !rest.empty();) {
    const auto chunk = rest.first(std::min<std::size_t>(kChunkRecords, rest.size()));
    SortChunk(chunk);
    AddChunk(chunk, source, layout);
    rest = rest.subspan(chunk.size());
  }
  Settle();
}

void BlockIndex::Merge() {
  // Stable throughout: of equal ids the one of the earliest chunk comes first and stays.
  std::stable_sort(pending_.begin(), pending_.end(), LowerBid);
  const auto middle = static_cast<std::ptrdiff_t>(sorted_.size());
  sorted_.insert(sorted_.end(), pending_.begin(), pending_.end());
  pending_.clear();
  std::inplace_merge(sorted_.begin(), sorted_.begin() + middle, sorted_.end(), LowerBid);
  sorted_.erase(std::unique(sorted_.begin(), sorted_.end(), SameBid), sorted_.end());
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
