// The two trees of a store, written as a whole once all blocks and nodes are known.
#include <algorithm>

#include "forge/store.h"

namespace velmora::forge {

Store::TreeRoot Store::WriteTree(PageType type, std::vector<std::uint64_t> keys, Bytes entries) {
  std::size_t entrySize = type == PageType::kNodes ? traits_.nodeEntrySize : traits_.blockEntrySize;
  for (std::uint8_t level = 0;; ++level) {
    std::size_t perPage = PageCapacity(options_.format, entrySize);
    // A tree of one entry a page would never come to a root.
    if (options_.entriesPerPage != 0) {
      perPage = std::min(perPage, std::max<std::size_t>(options_.entriesPerPage, level > 0 ? 2 : 1));
    }
    std::vector<std::uint64_t> upperKeys;
    Bytes upperEntries;
    TreeRoot root;
    for (std::size_t at = 0; at == 0 || at < keys.size(); at += perPage) {
      const auto part = std::span(entries).subspan(at * entrySize, std::min(perPage, keys.size() - at) * entrySize);
      const PlacedPage page = WritePage({.type = type, .entries = Bytes(part.begin(), part.end()), .level = level});
      root = {.pageId = page.pageId, .offset = page.offset};
      if (keys.empty()) return root;
      upperKeys.push_back(keys[at]);
      Append(upperEntries, FormEntry(options_.format, BranchEntry{keys[at], page.pageId, page.offset}));
    }
    if (upperKeys.size() == 1) return root;
    keys = std::move(upperKeys);
    entries = std::move(upperEntries);
    entrySize = traits_.branchEntrySize;
  }
}

Store::TreeRoot Store::WriteNodeTree() {
  std::vector<NodeEntry> sorted = nodes_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const NodeEntry& a, const NodeEntry& b) { return a.nid < b.nid; });
  std::vector<std::uint64_t> keys;
  Bytes entries;
  for (const NodeEntry& node : sorted) {
    keys.push_back(node.nid);
    Append(entries, FormEntry(options_.format, node));
  }
  return WriteTree(PageType::kNodes, std::move(keys), std::move(entries));
}

Store::TreeRoot Store::WriteBlockTree() {
  std::vector<BlockEntry> sorted = extraEntries_;
  for (const PlacedBlock& block : blocks_) {
    if (!block.listed) continue;
    sorted.push_back({.bid = block.bid,
                      .offset = block.offset,
                      .size = block.size,
                      .refs = block.refs,
                      .inflatedSize = block.inflatedSize});
  }
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const BlockEntry& a, const BlockEntry& b) { return a.bid < b.bid; });
  std::vector<std::uint64_t> keys;
  Bytes entries;
  for (const BlockEntry& block : sorted) {
    keys.push_back(block.bid);
    Append(entries, FormEntry(options_.format, block));
  }
  return WriteTree(PageType::kBlocks, std::move(keys), std::move(entries));
}

}  // namespace velmora::forge
