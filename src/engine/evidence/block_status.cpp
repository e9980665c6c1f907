#include "engine/evidence/block_status.h"

#include <algorithm>

namespace velmora::engine {
namespace {

/// Ids that a leaf steps over, as positions in the list of blocks.
class SteppedOver {
 public:
  explicit SteppedOver(const std::vector<FoundBlock>& blocks) : blocks_(blocks), change_(blocks.size() + 1) {}

  void Add(std::uint64_t from, std::uint64_t to) {
    const auto begin = std::ranges::upper_bound(blocks_, Bid{from}, {}, &FoundBlock::bid);
    const auto end = std::ranges::lower_bound(begin, blocks_.end(), Bid{to}, {}, &FoundBlock::bid);
    if (begin >= end) return;
    ++change_[static_cast<std::size_t>(begin - blocks_.begin())];
    --change_[static_cast<std::size_t>(end - blocks_.begin())];
  }

  void MarkFreed(std::vector<BlockStatus>& statuses) const {
    std::int64_t depth = 0;
    for (std::size_t i = 0; i < statuses.size(); ++i) {
      depth += change_[i];
      if (depth > 0 && statuses[i] == BlockStatus::kUnknown) statuses[i] = BlockStatus::kFreed;
    }
  }

 private:
  const std::vector<FoundBlock>& blocks_;
  std::vector<std::int32_t> change_;  ///< of the number of steps over a block, against the one ahead of it
};

}  // namespace

std::uint64_t NewestWholeBlock(const Evidence& evidence) {
  const auto newest = std::find_if(evidence.blocks.rbegin(), evidence.blocks.rend(), [](const FoundBlock& block) {
    return block.grade == Grade::kProven || block.grade == Grade::kMoved;
  });
  return newest == evidence.blocks.rend() ? 0 : Value(newest->bid);
}

std::vector<BlockStatus> StatusesOf(const Evidence& evidence, const FoundTree& tree, const std::vector<bool>& members) {
  const bool isExact = !members.empty();
  std::vector<BlockStatus> statuses(evidence.blocks.size(), isExact ? BlockStatus::kFreed : BlockStatus::kUnknown);
  std::uint64_t lastKey = 0;
  SteppedOver stepped(evidence.blocks);
  std::vector<std::byte> buffer;
  for (const TreePage& page : tree.Pages()) {
    if (page.found.level != 0 || page.found.grade == Grade::kHurt) continue;
    lastKey = std::max(lastKey, page.last);
    if (isExact) continue;
    const PageEntries entries = tree.EntriesOf(page, buffer);
    for (std::size_t i = 1; i < entries.Count(); ++i) stepped.Add(tree.KeyOf(entries[i - 1]), tree.KeyOf(entries[i]));
  }
  const bool pagesAreOld = !isExact && NewestWholeBlock(evidence) > lastKey;
  Paint(tree, members, [&](const TreePage& page, std::span<const std::byte> bytes, Shade shade) {
    if (shade != Shade::kLive || pagesAreOld) return;
    const BbtEntry entry = DecodeBbtEntry(bytes, *evidence.layout);
    if (entry.cRef <= 1) return;  // nothing refers to it any more
    const FoundBlock* block = evidence.Find(entry.ref.bid);
    if (block == nullptr) return;
    // An entry of a hurt page counts if the block itself says the same.
    if (page.found.grade == Grade::kHurt && (block->offset != entry.ref.ib || block->cb != entry.cb)) return;
    statuses[static_cast<std::size_t>(block - evidence.blocks.data())] = BlockStatus::kLive;
  });
  stepped.MarkFreed(statuses);
  return statuses;
}

}  // namespace velmora::engine
