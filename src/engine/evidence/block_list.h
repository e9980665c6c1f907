// Blocks by ascending id, packed: a store of 50 GB has twenty million, which as they are would take half a gigabyte.
//
// Groups of 128. Blocks that follow one another by id stand near one another as a rule and have ids of one step, so in
// a group each field takes the bits of the widest that it holds, ids counted from the first and places from the lowest,
// without the low bits that are the same in all:
//
//   group   id of the first | lowest offset | low bits left out and bits taken, of either | bits of size and of marks
//   block   id | offset | size | kind, whether it is named, grade
//
// About 6 bytes a block, 8 of a store whose blocks stand in no order. Nothing is lost whatever the values are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "engine/evidence/found_block.h"

namespace velmora::engine {

class BlockList {
 public:
  class Iterator;

  BlockList() = default;
  BlockList(BlockList&&) = default;
  BlockList& operator=(BlockList&&) = default;
  /// By ascending id.
  explicit BlockList(std::span<const FoundBlock> blocks);

  /// Its id is not below that of the last.
  void Add(const FoundBlock& block);

  std::size_t size() const { return (groups_.size() - taken_) * kGroup + tail_.size(); }
  bool empty() const { return size() == 0; }
  FoundBlock operator[](std::size_t number) const;
  Bid IdOf(std::size_t number) const;
  Iterator begin() const;
  Iterator end() const;

  /// The number of the first block whose id is not below; size() where there is none.
  std::size_t FirstFrom(Bid bid) const;

  /// The number of the first block of that id.
  std::optional<std::size_t> NumberOf(Bid bid) const;

  /// Moves the first blocks, however many, to `out`, and their memory goes back; false where there are none left.
  bool TakeFirst(std::vector<FoundBlock>& out);

  /// Bytes that it takes.
  std::size_t Memory() const;

 private:
  static constexpr std::size_t kGroup = 128;

  struct Group {
    std::uint64_t firstId = 0;
    std::uint64_t leastOffset = 0;
    std::unique_ptr<std::byte[]> bits;
    std::uint8_t idShift = 0;
    std::uint8_t offsetShift = 0;
    std::uint8_t idBits = 0;
    std::uint8_t offsetBits = 0;
    std::uint8_t sizeBits = 0;
    std::uint8_t markBits = 0;
    std::uint8_t blockBits = 0;  ///< of all fields

    std::size_t Bytes() const;
    std::uint64_t PackedId(std::size_t i) const;
    std::uint64_t Id(std::size_t i) const { return firstId + (PackedId(i) << idShift); }
    FoundBlock Block(std::size_t i) const;
    std::size_t FirstFrom(std::uint64_t id) const;
  };
  static_assert(sizeof(Group) <= 32);

  static Group Pack(std::span<const FoundBlock> blocks);
  std::size_t FirstGroupFrom(std::uint64_t id) const;

  std::vector<Group> groups_;
  std::size_t taken_ = 0;         ///< groups that are empty by now
  std::vector<FoundBlock> tail_;  ///< fewer than a group
};

class BlockList::Iterator {
 public:
  using value_type = FoundBlock;
  using difference_type = std::ptrdiff_t;

  Iterator() = default;
  Iterator(const BlockList& list, std::size_t number) : list_(&list), number_(number) {}

  FoundBlock operator*() const { return (*list_)[number_]; }
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
  const BlockList* list_ = nullptr;
  std::size_t number_ = 0;
};

inline BlockList::Iterator BlockList::begin() const { return {*this, 0}; }
inline BlockList::Iterator BlockList::end() const { return {*this, size()}; }

}  // namespace velmora::engine
