#include "engine/evidence/tree_sizes.h"

#include <vector>

#include "store/format/block.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::engine {
namespace {

constexpr int kDeepest = 64;  ///< of sub-nodes below sub-nodes

}  // namespace

std::uint64_t TreeSizes::OfData(Bid bid) const {
  const std::optional<FoundBlock> block = view_.Found().Find(bid);
  if (!block) return 0;
  // The data itself is read only where blocks may be packed.
  if (!IsInternal(bid) && view_.Format().offInflatedSize == 0) return block->cb;
  std::vector<std::byte> content;
  if (!view_.Blocks().TryBlock(bid, content)) return 0;
  return IsInternal(bid) ? DecodeInternalHead(content).lcbTotal : content.size();
}

std::uint64_t TreeSizes::OfList(Bid bid, int depth) {
  if (bid == kNoBid || depth > kDeepest) return 0;
  const auto [known, isNew] = ofList_.try_emplace(Canonical(bid), 0);  // one that leads back to itself adds nothing
  if (!isNew) return known->second;
  ndb::Faults faults;
  const auto entries = IfReadable([&] { return ndb::ListSubnodes(view_.Blocks(), bid, &faults); });
  if (!entries) return 0;
  std::uint64_t size = 0;
  for (const ndb::SubnodeEntry& entry : *entries) {
    size += OfData(entry.trees.bidData) + OfList(entry.trees.bidSub, depth + 1);
  }
  return ofList_[Canonical(bid)] = size;
}

}  // namespace velmora::engine
