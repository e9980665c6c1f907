// Blocks in any order, sorted without ever holding them as they are: pieces of them are sorted and packed as they come,
// and merged at the end.
#pragma once

#include <cstddef>
#include <tuple>
#include <vector>

#include "engine/evidence/block_list.h"

namespace velmora::engine {

/// By id; of several of one id those come first that stand where they were written, then the ones ahead in the file.
inline std::tuple<Bid, bool, std::uint64_t> ByIdAndPlace(const FoundBlock& block) {
  return {block.bid, block.grade != Grade::kProven, block.offset};
}

class BlockSorter {
 public:
  BlockSorter() = default;
  BlockSorter(BlockSorter&&) = default;
  BlockSorter& operator=(BlockSorter&&) = default;

  /// As many as are worth a piece.
  static constexpr std::size_t kPiece = 32768;

  /// Leaves `blocks` empty.
  void Take(std::vector<FoundBlock>& blocks);

  /// All that were taken; afterwards there are none.
  BlockList Merge();

 private:
  std::vector<BlockList> pieces_;
};

}  // namespace velmora::engine
