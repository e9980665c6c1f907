#include "store/ndb/subnode_tree_writer.h"

#include <algorithm>
#include <span>
#include <utility>

#include "store/format/block.h"
#include "store/format/failures.h"

namespace velmora::ndb {
namespace {

void CheckEntries(std::span<const SubnodeEntry> entries) {
  if (entries.size() > SubnodeTreeWriter::kMaxEntries) {
    Raise(FailureKind::kNotSupported, ObjectKind::kSubnodeTree, entries.size(), "a node has too many sub-nodes");
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const Nid nid = entries[i].nid;
    if (i > 0 && entries[i - 1].nid == nid)
      RaiseCorrupt({ObjectKind::kSubnode, nid}, Value(nid), "two sub-nodes share an id");
    if (entries[i].trees.bidData == kNoBid)
      RaiseCorrupt({ObjectKind::kSubnode, nid}, Value(nid), "a sub-node has no data");
  }
}

}  // namespace

void SubnodeTreeWriter::Add(Nid nid, const WrittenNode& node) {
  entries_.push_back({nid, node.trees});
  dataSize_ += node.dataSize;
}

void SubnodeTreeWriter::Clear() {
  entries_.clear();
  dataSize_ = 0;
}

SubnodeTree SubnodeTreeWriter::Finish() {
  std::vector<SubnodeEntry> entries = std::exchange(entries_, {});
  SubnodeTree tree{kNoBid, std::exchange(dataSize_, 0)};
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.nid < b.nid; });
  CheckEntries(entries);
  for (const SubnodeEntry& entry : entries) ndb_.NoteNid(entry.nid);

  const BlockBuffer buffer = ndb_.TakeBuffer();
  const auto write = [&](std::uint8_t cLevel, std::size_t entrySize, std::size_t count) {
    Encode(InternalHead{BlockType::kSubnodeTree, cLevel, static_cast<std::uint16_t>(count)}, *buffer);
    return ndb_.WriteInternalBlock(std::span(*buffer).first(InternalHead::kSize + count * entrySize));
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
    leaves.push_back({entries[first].nid, write(0, kSlEntrySize, count)});
  }
  if (leaves.size() == 1) tree.bid = leaves[0].bid;
  if (leaves.size() > 1) {
    for (std::size_t i = 0; i < leaves.size(); ++i) {
      const std::size_t at = InternalHead::kSize + i * kSiEntrySize;
      Store<std::uint64_t>(*buffer, at, Value(leaves[i].firstNid));
      Store(*buffer, at + 8, leaves[i].bid);
    }
    tree.bid = write(1, kSiEntrySize, leaves.size());
  }
  return tree;
}

}  // namespace velmora::ndb
