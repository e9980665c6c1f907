#include "store/ndb/subnode_tree_reader.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include "store/format/block.h"
#include "store/format/failures.h"

namespace velmora::ndb {
namespace {

constexpr int kMaxDepth = 64;
constexpr std::uint8_t kLeafLevel = 0;

/// The bytes of a block that lists sub-nodes, and how to read them.
struct SubnodeBlock {
  std::vector<std::byte> bytes;
  const Generation* format;

  InternalBlock Entries() const { return {bytes, *format}; }
  bool IsLeaf() const { return Entries().Head().cLevel == kLeafLevel; }
};

SubnodeBlock ReadSubnodeBlock(const BlockSource& source, Bid bid, Faults* faults) {
  if (!IsInternal(bid)) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, Value(bid), "a sub-node tree refers to a data block");
  }
  SubnodeBlock block{{}, &source.Format()};
  source.ReadBlock(bid, block.bytes);
  const InternalBlock entries = block.Entries();
  if (!entries.IsKnown() || entries.Head().btype != BlockType::kSubnodeTree) {
    RaiseCorrupt({ObjectKind::kBlock, bid}, static_cast<std::uint64_t>(entries.Head().btype), "no SLBLOCK or SIBLOCK");
  }
  if (entries.EntryCount() != entries.Head().cEnt) {
    Note(faults,
         Corrupt({ObjectKind::kBlock, bid}, entries.Head().cEnt, "a sub-node block has more entries than room"));
  }
  return block;
}

SubnodeBlock ReadLeafBlock(const BlockSource& source, Bid bid, Faults* faults) {
  SubnodeBlock block = ReadSubnodeBlock(source, bid, faults);
  if (!block.IsLeaf()) RaiseCorrupt({ObjectKind::kBlock, bid}, 1, "a SIBLOCK below another");
  return block;
}

SubnodeEntry EntryOf(const InternalBlock& leaf, std::size_t i) {
  return {leaf.EntryNid(i), {leaf.EntryBid(i, 1), leaf.EntryBid(i, 2)}};
}

void AppendEntries(const InternalBlock& leaf, std::vector<SubnodeEntry>& entries) {
  for (std::size_t i = 0; i < leaf.EntryCount(); ++i) entries.push_back(EntryOf(leaf, i));
}

std::optional<SubnodeEntry> FindInLeaf(const InternalBlock& leaf, Nid nid) {
  for (std::size_t i = 0; i < leaf.EntryCount(); ++i) {
    if (leaf.EntryNid(i) == nid) return EntryOf(leaf, i);
  }
  return std::nullopt;
}

/// Adds up data sizes; each sub-node tree is walked once, however often it is shared.
class DataSizes {
 public:
  explicit DataSizes(const BlockSource& source) : source_(source) {}

  std::uint64_t Of(const NodeTrees& trees, int depth) {
    return OfData(trees.bidData) + (trees.bidSub == kNoBid ? 0 : OfSubnodes(trees.bidSub, depth));
  }

 private:
  std::uint64_t OfData(Bid bid) {
    if (bid == kNoBid) return 0;
    std::vector<std::byte> content;
    source_.ReadBlock(bid, content);
    return IsInternal(bid) ? DecodeInternalHead(content).lcbTotal : content.size();
  }

  std::uint64_t OfSubnodes(Bid bidSub, int depth) {
    if (depth == kMaxDepth) RaiseCorrupt({ObjectKind::kBlock, bidSub}, kMaxDepth, "sub-nodes nest too deep");
    if (const auto known = known_.find(bidSub); known != known_.end()) return known->second;
    std::uint64_t sum = 0;
    for (const SubnodeEntry& entry : ListSubnodes(source_, bidSub)) sum += Of(entry.trees, depth + 1);
    known_.emplace(bidSub, sum);
    return sum;
  }

  const BlockSource& source_;
  std::map<Bid, std::uint64_t> known_;
};

}  // namespace

std::vector<SubnodeEntry> ListSubnodes(const BlockSource& source, Bid bidSub, Faults* faults) {
  std::vector<SubnodeEntry> entries;
  if (bidSub == kNoBid) return entries;
  const SubnodeBlock root = ReadSubnodeBlock(source, bidSub, faults);
  if (root.IsLeaf()) {
    AppendEntries(root.Entries(), entries);
    return entries;
  }
  const InternalBlock index = root.Entries();
  std::unordered_set<Bid> seen;
  for (std::size_t i = 0; i < index.EntryCount(); ++i) {
    const Bid bid = index.EntryBid(i, 1);
    Tolerate(faults, [&] {
      // A block that is named twice would make much of little.
      if (!seen.insert(bid).second) {
        RaiseCorrupt({ObjectKind::kBlock, bidSub}, Value(bid), "a SIBLOCK names a block twice");
      }
      AppendEntries(ReadLeafBlock(source, bid, faults).Entries(), entries);
    });
  }
  return entries;
}

std::optional<SubnodeEntry> FindSubnode(const BlockSource& source, Bid bidSub, Nid nid) {
  if (bidSub == kNoBid) return std::nullopt;
  const SubnodeBlock root = ReadSubnodeBlock(source, bidSub, nullptr);
  if (root.IsLeaf()) return FindInLeaf(root.Entries(), nid);
  const InternalBlock index = root.Entries();
  std::size_t child = 0;
  while (child < index.EntryCount() && index.EntryNid(child) <= nid) ++child;
  if (child == 0) return std::nullopt;
  const SubnodeBlock leaf = ReadLeafBlock(source, index.EntryBid(child - 1, 1), nullptr);
  return FindInLeaf(leaf.Entries(), nid);
}

std::uint64_t DataSizeOf(const BlockSource& source, const NodeTrees& trees) { return DataSizes(source).Of(trees, 0); }

}  // namespace velmora::ndb
