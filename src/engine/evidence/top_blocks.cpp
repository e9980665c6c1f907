#include "engine/evidence/top_blocks.h"

#include "store/format/block.h"

namespace velmora::engine {
namespace {

/// XXBLOCK, XBLOCK, data.
constexpr int kMostLevels = 2;

/// What the first data block below a list is.
BlockKind KindBelow(const EvidenceView& view, const FoundBlock& list) {
  std::optional<FoundBlock> block = list;
  std::vector<std::byte> content;
  for (int level = 0; level < kMostLevels && block && block->kind == BlockKind::kList; ++level) {
    if (!view.Blocks().TryBlock(block->bid, content)) return BlockKind::kData;
    const InternalBlock entries(content, view.Format());
    if (entries.EntryCount() == 0) return BlockKind::kData;
    block = view.Found().Find(entries.EntryBid(0, 0));
  }
  return block ? view.Blocks().KindOf(*block) : BlockKind::kData;
}

}  // namespace

TopBlocks FindTopBlocks(const EvidenceView& view, RunContext& run) {
  TopBlocks tops;
  for (const FoundBlock& block : view.Found().blocks) {
    if (block.isNamed) continue;
    run.control.PausePoint();  // packed ones are read
    const bool isList = block.kind == BlockKind::kList;
    switch (isList ? KindBelow(view, block) : view.Blocks().KindOf(block)) {
      case BlockKind::kPropertyContext:
        tops.contexts.push_back(block.bid);
        break;
      case BlockKind::kTable:
        tops.tables.push_back(block.bid);
        break;
      case BlockKind::kSubnodes:
        if (!isList) tops.lists.push_back(block.bid);
        break;
      default:
        break;
    }
  }
  return tops;
}

}  // namespace velmora::engine
