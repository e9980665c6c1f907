// Heap-on-node: small allocations packed into the data blocks of a node.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "forge/bytes.h"
#include "forge/format.h"

namespace velmora::forge {

using Hid = std::uint32_t;

/// The largest allocation of a sound heap, in bytes.
inline constexpr std::size_t kMaxAllocation = 3580;

class Heap {
 public:
  Heap(Format format, std::uint8_t clientSignature, std::uint8_t signature = 0xEC);

  /// Adds an allocation and returns its id; a new block is begun where the last one is full. An allocation
  /// larger than a block throws std::length_error.
  Hid Add(std::span<const std::byte> data);

  /// The bytes of an allocation, to be filled in later.
  std::span<std::byte> At(Hid hid);

  /// Where the allocation begins within its block.
  std::size_t OffsetOf(Hid hid) const;

  void SetUserRoot(Hid hid) { userRoot_ = hid; }

  /// The blocks of the node: page maps written, all but the last filled up to a full block.
  std::vector<Bytes> Blocks() const;

 private:
  struct Block {
    Bytes data;                       ///< head and allocations
    std::vector<std::uint16_t> ends;  ///< start of the first allocation, then the end of each
  };

  void OpenBlock();
  std::size_t IndexOf(Hid hid) const { return (hid & ((1U << traits_.heapBlockShift) - 1)) >> 5; }
  std::size_t SizeWithMap(const Block& block, std::size_t moreData, std::size_t moreAllocations) const;

  const FormatTraits& traits_;
  std::uint8_t clientSignature_;
  std::uint8_t signature_;
  Hid userRoot_ = 0;
  std::vector<Block> blocks_;
};

}  // namespace velmora::forge
