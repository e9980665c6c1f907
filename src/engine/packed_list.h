// Blocks by ascending key, packed: a store of 50 GB has twenty million, which as they are would take half a gigabyte.
//
// About 6 bytes a block, 8 of a store whose blocks stand in no order.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

#include "engine/packed_group.h"

namespace velmora::engine {

/// `Fields` tells how a block becomes numbers and is made of them again: the type `Key` of its key, 64 bits at most,
/// and the functions `Of` and `BlockOf`.
template <class Block, class Fields>
class PackedList {
 public:
  using Key = typename Fields::Key;
  using value_type = Block;

  class Iterator {
   public:
    using value_type = Block;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    Iterator(const PackedList& list, std::size_t number) : list_(&list), number_(number) {}

    Block operator*() const { return (*list_)[number_]; }
    Iterator& operator++() {
      ++number_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++number_;
      return before;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const PackedList* list_ = nullptr;
    std::size_t number_ = 0;
  };

  /// Seeks keys of which each mostly stands right behind the last one, in a list that stays as it is and outlives it.
  class Seeker {
   public:
    explicit Seeker(const PackedList& list) : list_(list) {}

    std::optional<std::size_t> NumberOf(Key key) {
      const bool isNext = next_ < list_.size() && last_ < key && list_.KeyOf(next_) == key;
      const auto number = isNext ? std::optional(next_) : list_.NumberOf(key);
      if (number) {
        next_ = *number + 1;
        last_ = key;
      }
      return number;
    }

   private:
    const PackedList& list_;
    std::size_t next_ = 0;  ///< behind what was found last
    Key last_{};
  };

  PackedList() = default;
  PackedList(PackedList&&) = default;
  PackedList& operator=(PackedList&&) = default;

  /// By ascending key.
  explicit PackedList(std::span<const Block> blocks) {
    for (const Block& block : blocks) Add(block);
  }

  /// Its key is not below that of the last; blocks of one key keep the order in which they are added.
  void Add(const Block& block);

  std::size_t size() const { return (groups_.size() - taken_) * kGroup + tail_.size(); }
  bool empty() const { return size() == 0; }
  Block operator[](std::size_t number) const {
    const std::size_t group = taken_ + number / kGroup;
    return group < groups_.size() ? Fields::BlockOf(groups_[group].Fields(number % kGroup)) : tail_[number % kGroup];
  }
  Key KeyOf(std::size_t number) const {
    const std::size_t group = taken_ + number / kGroup;
    return group < groups_.size() ? Key{groups_[group].Key(number % kGroup)} : KeyOf(tail_[number % kGroup]);
  }
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size()}; }

  /// The number of the first block whose key is not below; size() where there is none.
  std::size_t FirstFrom(Key key) const;

  /// The number of the first block of that key.
  std::optional<std::size_t> NumberOf(Key key) const {
    const std::size_t number = FirstFrom(key);
    return number < size() && KeyOf(number) == key ? std::optional(number) : std::nullopt;
  }

  /// Moves the first blocks, however many, to `out`, and their memory goes back; false where there are none left.
  bool TakeFirst(std::vector<Block>& out);

  /// Bytes that it takes.
  std::size_t Memory() const;

 private:
  static constexpr std::size_t kGroup = PackedGroup::kBlocks;

  static Key KeyOf(const Block& block) { return Key{Fields::Of(block).key}; }
  std::size_t FirstGroupFrom(std::uint64_t key) const;

  std::vector<PackedGroup> groups_;
  std::size_t taken_ = 0;    ///< groups that are empty by now
  std::vector<Block> tail_;  ///< fewer than a group
};

template <class Block, class Fields>
void PackedList<Block, Fields>::Add(const Block& block) {
  assert(empty() || KeyOf(size() - 1) <= KeyOf(block));
  if (tail_.empty()) tail_.reserve(kGroup);
  tail_.push_back(block);
  if (tail_.size() < kGroup) return;
  std::array<PackedFields, kGroup> fields;
  std::ranges::transform(tail_, fields.begin(), Fields::Of);
  groups_.emplace_back(fields);
  tail_.clear();
}

/// The first group that does not begin below the key. Keys grow evenly as a rule, so it is sought first where it would
/// be then.
template <class Block, class Fields>
std::size_t PackedList<Block, Fields>::FirstGroupFrom(std::uint64_t key) const {
  if (taken_ == groups_.size() || groups_[taken_].FirstKey() >= key) return taken_;
  if (groups_.back().FirstKey() < key) return groups_.size();
  std::size_t below = taken_;  // begins below the key
  std::size_t notBelow = groups_.size() - 1;
  const auto look = [&](std::size_t at) { (groups_[at].FirstKey() < key ? below : notBelow) = at; };
  const double share = static_cast<double>(key - groups_[below].FirstKey()) /
                       static_cast<double>(groups_[notBelow].FirstKey() - groups_[below].FirstKey());
  const auto expected = below + static_cast<std::size_t>(share * static_cast<double>(notBelow - below));
  for (const std::size_t at : {expected, expected + 1}) {
    if (at > below && at < notBelow) look(at);
  }
  while (notBelow - below > 1) look(below + (notBelow - below) / 2);
  return notBelow;
}

template <class Block, class Fields>
std::size_t PackedList<Block, Fields>::FirstFrom(Key key) const {
  const auto sought = static_cast<std::uint64_t>(key);
  const std::size_t behind = FirstGroupFrom(sought);
  if (behind != taken_) {
    // The last group that begins below the key holds it, or all of it is below.
    const std::size_t number = groups_[behind - 1].FirstFrom(sought);
    if (number < kGroup || behind != groups_.size()) return (behind - 1 - taken_) * kGroup + number;
  } else if (behind != groups_.size()) {
    return 0;
  }
  const auto inTail = std::ranges::lower_bound(tail_, key, {}, [](const Block& block) { return KeyOf(block); });
  return size() - static_cast<std::size_t>(tail_.end() - inTail);
}

template <class Block, class Fields>
bool PackedList<Block, Fields>::TakeFirst(std::vector<Block>& out) {
  out.clear();
  if (taken_ == groups_.size()) {
    out.swap(tail_);
    return !out.empty();
  }
  for (std::size_t i = 0; i < kGroup; ++i) out.push_back(Fields::BlockOf(groups_[taken_].Fields(i)));
  groups_[taken_++].Drop();
  return true;
}

template <class Block, class Fields>
std::size_t PackedList<Block, Fields>::Memory() const {
  std::size_t bytes = tail_.capacity() * sizeof(Block) + groups_.capacity() * sizeof(PackedGroup);
  for (const PackedGroup& group : groups_) bytes += group.Memory();
  return bytes;
}

}  // namespace velmora::engine
