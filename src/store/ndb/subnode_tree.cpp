#include "store/ndb/subnode_tree.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "store/format/block.h"
#include "store/format/failures.h"
#include "store/ndb/ndb_writer.h"

namespace velmora::ndb {
namespace {

constexpr int kMaxDepth = 64;

/// The content of a SLBLOCK or SIBLOCK, its entries proven to lie in it.
struct SubnodeBlock {
  InternalHead head;
  std::vector<std::byte> content;

  std::span<const std::byte> Entry(std::size_t index) const {
    const std::size_t size = EntrySize(head);
    return std::span(content).subspan(InternalHead::kSize + index * size, size);
  }
  bool IsLeaf() const { return head.cLevel == 0; }
};

Result<SubnodeBlock> ReadSubnodeBlock(const BlockSource& source, Bid bid) {
  if (!IsInternal(bid)) return Corrupt(Named("block", bid), Value(bid), "a sub-node tree refers to a data block");
  SubnodeBlock block;
  if (auto read = source.ReadBlock(bid, block.content); !read) return tl::unexpected(read.error());
  block.head = DecodeInternalHead(block.content);
  if (block.head.btype != BlockType::kSubnodeTree || EntrySize(block.head) == 0) {
    return Corrupt(Named("block", bid), static_cast<std::uint64_t>(block.head.btype), "no SLBLOCK or SIBLOCK");
  }
  if (InternalHead::kSize + block.head.cEnt * EntrySize(block.head) > block.content.size()) {
    return Corrupt(Named("block", bid), block.head.cEnt, "a sub-node block has more entries than room");
  }
  return block;
}

Result<SubnodeBlock> ReadLeafBlock(const BlockSource& source, Bid bid) {
  Result<SubnodeBlock> block = ReadSubnodeBlock(source, bid);
  if (block && !block->IsLeaf()) return Corrupt(Named("block", bid), block->head.cLevel, "a SIBLOCK below another");
  return block;
}

// The high half of an id is rubbish in stores of other makers.
Nid NidOf(std::span<const std::byte> entry) { return LoadNid(entry, 0); }

SubnodeEntry DecodeLeafEntry(std::span<const std::byte> entry) {
  return {NidOf(entry), {LoadBid(entry, 8), LoadBid(entry, 16)}};
}

void AppendEntries(const SubnodeBlock& leaf, std::vector<SubnodeEntry>& entries) {
  for (std::size_t i = 0; i < leaf.head.cEnt; ++i) entries.push_back(DecodeLeafEntry(leaf.Entry(i)));
}

std::optional<SubnodeEntry> FindInLeaf(const SubnodeBlock& leaf, Nid nid) {
  for (std::size_t i = 0; i < leaf.head.cEnt; ++i) {
    if (NidOf(leaf.Entry(i)) == nid) return DecodeLeafEntry(leaf.Entry(i));
  }
  return std::nullopt;
}

Result<void> CheckEntries(std::span<const SubnodeEntry> entries) {
  if (entries.size() > SubnodeTreeWriter::kMaxEntries) {
    return Fail(FailureKind::kNotSupported, "sub-node tree", entries.size(), "a node has too many sub-nodes");
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Nid nid = entries[i].nid;
    if (i > 0 && entries[i - 1].nid == nid)
      return Corrupt(Named("sub-node", nid), Value(nid), "two sub-nodes share an id");
    if (entries[i].trees.bidData == kNoBid)
      return Corrupt(Named("sub-node", nid), Value(nid), "a sub-node has no data");
  }
  return {};
}

/// Adds up data sizes; each sub-node tree is walked once, however often it is shared.
class DataSizes {
 public:
  explicit DataSizes(const BlockSource& source) : source_(source) {}

  Result<std::uint64_t> Of(const NodeTrees& trees, int depth) {
    const Result<std::uint64_t> own = OfData(trees.bidData);
    if (!own || trees.bidSub == kNoBid) return own;
    const Result<std::uint64_t> below = OfSubnodes(trees.bidSub, depth);
    if (!below) return below;
    return *own + *below;
  }

 private:
  Result<std::uint64_t> OfData(Bid bid) {
    if (bid == kNoBid) return 0;
    std::vector<std::byte> content;
    if (auto read = source_.ReadBlock(bid, content); !read) return tl::unexpected(read.error());
    if (!IsInternal(bid)) return content.size();
    return DecodeInternalHead(content).lcbTotal;
  }

  Result<std::uint64_t> OfSubnodes(Bid bidSub, int depth) {
    if (depth == kMaxDepth) return Corrupt(Named("block", bidSub), kMaxDepth, "sub-nodes nest too deep");
    if (const auto known = known_.find(bidSub); known != known_.end()) return known->second;
    const Result<std::vector<SubnodeEntry>> entries = ListSubnodes(source_, bidSub);
    if (!entries) return tl::unexpected(entries.error());
    std::uint64_t sum = 0;
    for (const SubnodeEntry& entry : *entries) {
      const Result<std::uint64_t> size = Of(entry.trees, depth + 1);
      if (!size) return size;
      sum += *size;
    }
    known_.emplace(bidSub, sum);
    return sum;
  }

  const BlockSource& source_;
  std::map<Bid, std::uint64_t> known_;
};

}  // namespace

void SubnodeTreeWriter::Add(Nid nid, const WrittenNode& node) {
  entries_.push_back({nid, node.trees});
  dataSize_ += node.dataSize;
}

void SubnodeTreeWriter::Clear() {
  entries_.clear();
  dataSize_ = 0;
}

Result<SubnodeTree> SubnodeTreeWriter::Finish() {
  std::vector<SubnodeEntry> entries = std::exchange(entries_, {});
  SubnodeTree tree{kNoBid, std::exchange(dataSize_, 0)};
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.nid < b.nid; });
  if (auto sound = CheckEntries(entries); !sound) return tl::unexpected(sound.error());
  for (const SubnodeEntry& entry : entries) ndb_.NoteNid(entry.nid);

  const BlockBuffer buffer = ndb_.TakeBuffer();
  const auto write = [&](std::uint8_t cLevel, std::size_t count) {
    const InternalHead head{BlockType::kSubnodeTree, cLevel, static_cast<std::uint16_t>(count)};
    Encode(head, *buffer);
    return ndb_.WriteInternalBlock(std::span(*buffer).first(InternalHead::kSize + count * EntrySize(head)));
  };
  struct Leaf {
    Nid firstNid;
    Bid bid;
  };
  std::vector<Leaf> leaves;
  for (std::size_t first = 0; first < entries.size(); first += kMaxSlEntries) {
    const std::size_t count = std::min(entries.size() - first, kMaxSlEntries);
    for (std::size_t i = 0; i < count; ++i) {
      const SubnodeEntry& entry = entries[first + i];
      const std::size_t at = InternalHead::kSize + i * kSlEntrySize;
      Store<std::uint64_t>(*buffer, at, Value(entry.nid));
      Store(*buffer, at + 8, entry.trees.bidData);
      Store(*buffer, at + 16, entry.trees.bidSub);
    }
    const Result<Bid> leaf = write(0, count);
    if (!leaf) return tl::unexpected(leaf.error());
    leaves.push_back({entries[first].nid, *leaf});
  }
  if (leaves.size() == 1) tree.bid = leaves[0].bid;
  if (leaves.size() > 1) {
    for (std::size_t i = 0; i < leaves.size(); ++i) {
      const std::size_t at = InternalHead::kSize + i * kSiEntrySize;
      Store<std::uint64_t>(*buffer, at, Value(leaves[i].firstNid));
      Store(*buffer, at + 8, leaves[i].bid);
    }
    const Result<Bid> root = write(1, leaves.size());
    if (!root) return tl::unexpected(root.error());
    tree.bid = *root;
  }
  return tree;
}

Result<std::vector<SubnodeEntry>> ListSubnodes(const BlockSource& source, Bid bidSub) {
  std::vector<SubnodeEntry> entries;
  if (bidSub == kNoBid) return entries;
  const Result<SubnodeBlock> root = ReadSubnodeBlock(source, bidSub);
  if (!root) return tl::unexpected(root.error());
  if (root->IsLeaf()) {
    AppendEntries(*root, entries);
    return entries;
  }
  for (std::size_t i = 0; i < root->head.cEnt; ++i) {
    const Result<SubnodeBlock> leaf = ReadLeafBlock(source, LoadBid(root->Entry(i), 8));
    if (!leaf) return tl::unexpected(leaf.error());
    AppendEntries(*leaf, entries);
  }
  return entries;
}

Result<std::optional<SubnodeEntry>> FindSubnode(const BlockSource& source, Bid bidSub, Nid nid) {
  if (bidSub == kNoBid) return std::nullopt;
  const Result<SubnodeBlock> root = ReadSubnodeBlock(source, bidSub);
  if (!root) return tl::unexpected(root.error());
  if (root->IsLeaf()) return FindInLeaf(*root, nid);
  std::size_t child = 0;
  while (child < root->head.cEnt && NidOf(root->Entry(child)) <= nid) ++child;
  if (child == 0) return std::nullopt;
  const Result<SubnodeBlock> leaf = ReadLeafBlock(source, LoadBid(root->Entry(child - 1), 8));
  if (!leaf) return tl::unexpected(leaf.error());
  return FindInLeaf(*leaf, nid);
}

Result<std::uint64_t> DataSizeOf(const BlockSource& source, const NodeTrees& trees) {
  return DataSizes(source).Of(trees, 0);
}

}  // namespace velmora::ndb
