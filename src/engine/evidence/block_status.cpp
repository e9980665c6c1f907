#include "engine/evidence/block_status.h"

#include <algorithm>

namespace velmora::engine {
namespace {

/// Ids that a leaf steps over, as positions in the list of blocks.
class SteppedOver {
 public:
  explicit SteppedOver(const BlockList& blocks) : blocks_(blocks), change_(blocks.size() + 1) {}

  void Add(std::uint64_t from, std::uint64_t to) {
    if (from >= to) return;
    const std::size_t begin = blocks_.FirstFrom(Bid{from + 1});
    const std::size_t end = blocks_.FirstFrom(Bid{to});
    if (begin >= end) return;
    ++change_[begin];
    --change_[end];
  }

  void MarkFreed(std::vector<BlockStatus>& statuses) const {
    std::int64_t depth = 0;
    for (std::size_t i = 0; i < statuses.size(); ++i) {
      depth += change_[i];
      if (depth > 0 && statuses[i] == BlockStatus::kUnknown) statuses[i] = BlockStatus::kFreed;
    }
  }

 private:
  const BlockList& blocks_;
  std::vector<std::int32_t> change_;  ///< of the number of steps over a block, against the one ahead of it
};

}  // namespace

std::uint64_t NewestWholeBlock(const Evidence& evidence) {
  for (std::size_t i = evidence.blocks.size(); i-- > 0;) {
    const FoundBlock block = evidence.blocks[i];
    if (IsWhole(block)) return Value(block.bid);
  }
  return 0;
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
  BlockList::Seeker seeker(evidence.blocks);
  Paint(tree, members, [&](const TreePage& page, std::span<const std::byte> bytes, Shade shade) {
    if (shade != Shade::kLive || pagesAreOld) return;
    const BbtEntry entry = DecodeBbtEntry(bytes, *evidence.layout);
    if (entry.cRef <= 1) return;  // nothing refers to it any more
    const std::optional<std::size_t> number = seeker.NumberOf(Canonical(entry.ref.bid));
    if (!number) return;
    if (page.found.grade == Grade::kHurt) {
      // An entry of a hurt page counts if the block itself says the same.
      const FoundBlock block = evidence.blocks[*number];
      if (block.offset != entry.ref.ib || block.cb != entry.cb) return;
    }
    statuses[*number] = BlockStatus::kLive;
  });
  stepped.MarkFreed(statuses);
  return statuses;
}

}  // namespace velmora::engine
