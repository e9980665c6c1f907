#include "engine/evidence/block_sorter.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace velmora::engine {
namespace {

/// What is left of a piece.
class Rest {
 public:
  explicit Rest(BlockList piece) : piece_(std::move(piece)) { piece_.TakeFirst(first_); }

  bool IsEmpty() const { return at_ == first_.size(); }
  const FoundBlock& First() const { return first_[at_]; }
  void Pop() {
    if (++at_ < first_.size()) return;
    at_ = 0;
    piece_.TakeFirst(first_);
  }

 private:
  BlockList piece_;
  std::vector<FoundBlock> first_;
  std::size_t at_ = 0;
};

bool IsBehind(const std::unique_ptr<Rest>& a, const std::unique_ptr<Rest>& b) {
  return ByIdAndPlace(a->First()) > ByIdAndPlace(b->First());
}

}  // namespace

void BlockSorter::Take(std::vector<FoundBlock>& blocks) {
  if (blocks.empty()) return;
  // Those of a store that was written from front to back are in order.
  if (!std::ranges::is_sorted(blocks, {}, ByIdAndPlace)) std::ranges::sort(blocks, {}, ByIdAndPlace);
  pieces_.emplace_back(blocks);
  blocks.clear();
}

BlockList BlockSorter::Merge() {
  std::vector<std::unique_ptr<Rest>> rests;
  for (BlockList& piece : std::exchange(pieces_, {})) rests.push_back(std::make_unique<Rest>(std::move(piece)));
  std::ranges::make_heap(rests, IsBehind);  // the one to take from next stands first
  BlockList all;
  while (!rests.empty()) {
    std::ranges::pop_heap(rests, IsBehind);
    Rest& rest = *rests.back();
    // Pieces of a store that was written from front to back hardly overlap.
    const bool isLast = rests.size() == 1;
    do {
      all.Add(rest.First());
      rest.Pop();
    } while (!rest.IsEmpty() && (isLast || !IsBehind(rests.back(), rests.front())));
    if (rest.IsEmpty()) {
      rests.pop_back();
    } else {
      std::ranges::push_heap(rests, IsBehind);
    }
  }
  return all;
}

}  // namespace velmora::engine
