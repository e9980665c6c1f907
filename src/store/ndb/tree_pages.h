// The pages of the block tree and of the node tree, formed from entries in ascending order.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "store/format/page.h"
#include "store/ndb/block_file.h"
#include "store/ndb/node_table.h"

namespace velmora::ndb {

/// Writes one tree: pages go to the file as they fill, each level into the one above.
class TreePagesWriter {
 public:
  /// The offset of each page that is written goes to the end of `offsets`.
  TreePagesWriter(BlockFile& file, PageType type, std::size_t leafEntrySize, std::vector<std::uint64_t>& offsets)
      : file_(file), type_(type), leafEntrySize_(leafEntrySize), offsets_(offsets) {}

  /// Adds a leaf entry; keys ascend.
  void Add(std::uint64_t key, std::span<const std::byte> entry) { AddTo(0, key, entry); }

  /// Gives the root. A tree of no entries is one empty leaf.
  [[nodiscard]] Bref Finish();

 private:
  struct Level {
    Page page{};
    std::uint16_t cEnt = 0;
    std::uint64_t firstKey = 0;
    bool hasPages = false;  ///< some of the level is written already
  };

  std::size_t EntrySize(std::size_t level) const { return level == 0 ? leafEntrySize_ : BtEntry::kSize; }
  void AddTo(std::size_t level, std::uint64_t key, std::span<const std::byte> entry);
  [[nodiscard]] Bref WriteLevel(std::size_t level);
  void MoveUp(std::size_t level);

  BlockFile& file_;
  PageType type_;
  std::size_t leafEntrySize_;
  std::vector<Level> levels_;
  std::vector<std::uint64_t>& offsets_;
};

/// Both give the root and add the offsets of all pages to `offsets`, those of a tree that fails on the way too.
[[nodiscard]] Bref WriteBlockTree(BlockFile& file, std::vector<std::uint64_t>& offsets);
[[nodiscard]] Bref WriteNodeTree(BlockFile& file, const NodeTable& nodes, std::vector<std::uint64_t>& offsets);

}  // namespace velmora::ndb
