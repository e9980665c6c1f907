#include "store/ndb/tree_pages.h"

#include <algorithm>
#include <array>

namespace velmora::ndb {

void TreePagesWriter::AddTo(std::size_t level, std::uint64_t key, std::span<const std::byte> entry) {
  if (level == levels_.size()) levels_.emplace_back();
  if (levels_[level].cEnt == MaxEntries(EntrySize(level))) MoveUp(level);
  Level& at = levels_[level];
  if (at.cEnt == 0) at.firstKey = key;
  std::copy(entry.begin(), entry.end(), at.page.begin() + static_cast<std::ptrdiff_t>(at.cEnt * entry.size()));
  ++at.cEnt;
}

Bref TreePagesWriter::WriteLevel(std::size_t level) {
  Level& at = levels_[level];
  const std::size_t size = EntrySize(level);
  Encode(BtPageHead{at.cEnt, MaxEntries(size), static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(level)},
         at.page);
  const Bref ref = file_.WritePage(type_, at.page);
  offsets_.push_back(ref.ib);
  return ref;
}

void TreePagesWriter::MoveUp(std::size_t level) {
  const Bref ref = WriteLevel(level);
  const std::uint64_t firstKey = levels_[level].firstKey;
  levels_[level] = Level{.hasPages = true};
  std::array<std::byte, BtEntry::kSize> entry;
  Encode(BtEntry{firstKey, ref}, entry);
  AddTo(level + 1, firstKey, entry);
}

Bref TreePagesWriter::Finish() {
  if (levels_.empty()) levels_.emplace_back();
  // A page is written when one more entry comes, so no level is ever left without an entry, and the first
  // level of a single page is the root.
  std::size_t level = 0;
  for (; levels_[level].hasPages; ++level) MoveUp(level);
  return WriteLevel(level);
}

Bref WriteBlockTree(BlockFile& file, std::vector<std::uint64_t>& offsets) {
  TreePagesWriter tree(file, PageType::kBbt, BbtEntry::kSize, offsets);
  std::array<std::byte, BbtEntry::kSize> entry;
  file.Table().ForEach([&](Bid bid, const BlockTable::Block& block) {
    Encode(BbtEntry{{bid, block.ib}, block.cb, static_cast<std::uint16_t>(block.references + 1)}, entry);
    tree.Add(Value(bid), entry);
  });
  return tree.Finish();
}

Bref WriteNodeTree(BlockFile& file, const NodeTable& nodes, std::vector<std::uint64_t>& offsets) {
  TreePagesWriter tree(file, PageType::kNbt, NbtEntry::kSize, offsets);
  std::array<std::byte, NbtEntry::kSize> entry;
  nodes.ForEach([&](const NodeEntry& node) {
    Encode(NbtEntry{node.nid, node.trees.bidData, node.trees.bidSub, node.nidParent}, entry);
    tree.Add(Value(node.nid), entry);
  });
  return tree.Finish();
}

}  // namespace velmora::ndb
