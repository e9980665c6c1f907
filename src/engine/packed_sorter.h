// Blocks in any order, sorted without ever holding them as they are: pieces of them are sorted and packed as they come,
// and merged at the end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace velmora::engine {

/// Into a packed list `List`, by what the function `orderOf` gives of a block; equals keep the order in which they
/// came. That order begins with the list's own.
template <class List, auto orderOf>
class PackedSorter {
 public:
  using Block = typename List::value_type;

  PackedSorter() = default;
  PackedSorter(PackedSorter&&) = default;
  PackedSorter& operator=(PackedSorter&&) = default;

  /// As many as are worth a piece.
  static constexpr std::size_t kPiece = 32768;

  /// Leaves `blocks` empty.
  void Take(std::vector<Block>& blocks) {
    // Those of a store that was written from front to back are in order.
    if (!std::ranges::is_sorted(blocks, {}, orderOf)) std::ranges::stable_sort(blocks, {}, orderOf);
    TakeSorted(List(blocks));
    blocks.clear();
  }

  void TakeSorted(List blocks) {
    if (!blocks.empty()) pieces_.push_back(std::move(blocks));
  }

  /// All that were taken; afterwards there are none.
  List Merge() {
    List all;
    Merge([&all](const Block& block) { all.Add(block); });
    return all;
  }

  /// The same one by one, to `take`. The memory of a piece goes back on the way.
  template <class Taker>
  void Merge(Taker take);

  /// Bytes that it takes.
  std::size_t Memory() const {
    std::size_t bytes = pieces_.capacity() * sizeof(List);
    for (const List& piece : pieces_) bytes += piece.Memory();
    return bytes;
  }

 private:
  /// What is left of a piece.
  class Rest {
   public:
    Rest(List piece, std::size_t number) : piece_(std::move(piece)), number_(number) { piece_.TakeFirst(first_); }

    bool IsEmpty() const { return at_ == first_.size(); }
    const Block& First() const { return first_[at_]; }
    void Pop() {
      if (++at_ < first_.size()) return;
      at_ = 0;
      piece_.TakeFirst(first_);
    }

    /// Of equals that of the earlier piece comes first.
    bool IsBehind(const Rest& other) const {
      const auto its = orderOf(First());
      const auto others = orderOf(other.First());
      return others < its || (number_ > other.number_ && !(its < others));
    }

   private:
    List piece_;
    std::vector<Block> first_;
    std::size_t at_ = 0;
    std::size_t number_;
  };

  static bool IsBehind(const std::unique_ptr<Rest>& a, const std::unique_ptr<Rest>& b) { return a->IsBehind(*b); }

  std::vector<List> pieces_;
};

template <class List, auto orderOf>
template <class Taker>
void PackedSorter<List, orderOf>::Merge(Taker take) {
  std::vector<std::unique_ptr<Rest>> rests;
  for (List& piece : std::exchange(pieces_, {})) {
    rests.push_back(std::make_unique<Rest>(std::move(piece), rests.size()));
  }
  std::ranges::make_heap(rests, IsBehind);  // the one to take from next stands first
  while (!rests.empty()) {
    std::ranges::pop_heap(rests, IsBehind);
    Rest& rest = *rests.back();
    // Pieces of a store that was written from front to back hardly overlap.
    const bool isLast = rests.size() == 1;
    do {
      take(rest.First());
      rest.Pop();
    } while (!rest.IsEmpty() && (isLast || !IsBehind(rests.back(), rests.front())));
    if (rest.IsEmpty()) {
      rests.pop_back();
    } else {
      std::ranges::push_heap(rests, IsBehind);
    }
  }
}

}  // namespace velmora::engine
