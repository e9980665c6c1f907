// A set of ids of blocks.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "store/format/ids.h"

namespace velmora::engine {

/// Ids that are near one another share a word: lists name blocks that were written one after another.
class BidSet {
 public:
  /// Bit 0 does not count. Returns whether it was not there.
  bool Insert(Bid bid) {
    const std::size_t before = size_;
    Add(WordOf(bid), BitOf(bid));
    return size_ != before;
  }
  void Insert(const BidSet& others) {
    for (const auto& [word, bits] : others.words_) Add(word, bits);
  }

  bool Contains(Bid bid) const {
    const auto word = words_.find(WordOf(bid));
    return word != words_.end() && (word->second & BitOf(bid)) != 0;
  }

  std::size_t size() const { return size_; }

 private:
  static std::uint64_t WordOf(Bid bid) { return Value(bid) / 128; }
  static std::uint64_t BitOf(Bid bid) { return std::uint64_t{1} << Value(bid) / 2 % 64; }

  void Add(std::uint64_t word, std::uint64_t bits) {
    std::uint64_t& there = words_[word];
    size_ += static_cast<std::size_t>(std::popcount(bits & ~there));
    there |= bits;
  }

  std::unordered_map<std::uint64_t, std::uint64_t> words_;
  std::size_t size_ = 0;
};

}  // namespace velmora::engine
