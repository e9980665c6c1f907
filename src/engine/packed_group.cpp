#include "engine/packed_group.h"

#include <algorithm>
#include <bit>

namespace velmora::engine {
namespace {

/// Into bits that are zero.
void Put(std::byte* bits, std::size_t& at, unsigned width, std::uint64_t value) {
  std::byte* to = bits + at / 8;
  const auto shift = static_cast<unsigned>(at % 8);
  std::uint64_t there = 0;
  std::memcpy(&there, to, sizeof(there));
  there |= value << shift;
  std::memcpy(to, &there, sizeof(there));
  if (shift + width > 64) to[sizeof(there)] = static_cast<std::byte>(value >> (64 - shift));
  at += width;
}

std::uint8_t WidthOf(std::uint64_t value) { return static_cast<std::uint8_t>(std::bit_width(value | 1)); }

/// The low bits that are zero in all numbers, `all` being what is set in any.
std::uint8_t LowZeros(std::uint64_t all) { return all == 0 ? 0 : static_cast<std::uint8_t>(std::countr_zero(all)); }

}  // namespace

PackedGroup::PackedGroup(std::span<const PackedFields, kBlocks> blocks)
    : firstKey_(blocks.front().key), leastOffset_(std::ranges::min(blocks, {}, &PackedFields::offset).offset) {
  std::uint64_t keys = 0;
  std::uint64_t offsets = 0;
  std::uint64_t sizes = 0;
  std::uint64_t marks = 0;
  for (const PackedFields& block : blocks) {
    keys |= block.key - firstKey_;
    offsets |= block.offset - leastOffset_;
    sizes |= block.size;
    marks |= block.marks;
  }
  keyShift_ = LowZeros(keys);
  offsetShift_ = LowZeros(offsets);
  keyBits_ = WidthOf(keys >> keyShift_);
  offsetBits_ = WidthOf(offsets >> offsetShift_);
  sizeBits_ = WidthOf(sizes);
  markBits_ = WidthOf(marks);
  blockBits_ = static_cast<std::uint8_t>(keyBits_ + offsetBits_ + sizeBits_ + markBits_);
  bits_ = std::make_unique<std::byte[]>(Bytes());
  std::size_t at = 0;
  for (const PackedFields& block : blocks) {
    const std::uint64_t key = (block.key - firstKey_) >> keyShift_;
    const std::uint64_t offset = (block.offset - leastOffset_) >> offsetShift_;
    if (blockBits_ <= kBitsOfWord) {  // nearly always
      const std::uint64_t sizeAndMarks = block.marks << sizeBits_ | block.size;
      Put(bits_.get(), at, blockBits_, (sizeAndMarks << offsetBits_ | offset) << keyBits_ | key);
    } else {
      Put(bits_.get(), at, keyBits_, key);
      Put(bits_.get(), at, offsetBits_, offset);
      Put(bits_.get(), at, sizeBits_, block.size);
      Put(bits_.get(), at, markBits_, block.marks);
    }
  }
}

std::size_t PackedGroup::FirstFrom(std::uint64_t key) const {
  const std::uint64_t packed = ((key - firstKey_ - 1) >> keyShift_) + 1;
  const std::uint64_t mask = Mask(keyBits_);
  const auto isBelow = [&](std::size_t i) {
    return (keyBits_ > kBitsOfWord ? PackedKey(i) : WordAt(i * blockBits_) & mask) < packed;
  };
  if (isBelow(kBlocks - 1)) return kBlocks;
  // Mostly it is where it would be if keys grew evenly, or the next.
  const std::uint64_t last = PackedKey(kBlocks - 1);
  const std::size_t expected = last >> 32 != 0 ? 1 : static_cast<std::size_t>(packed * (kBlocks - 1) / last);
  if (expected != 0 && isBelow(expected - 1)) {
    if (!isBelow(expected)) return expected;
    if (!isBelow(expected + 1)) return expected + 1;
  }
  std::size_t first = 0;
  for (std::size_t step = kBlocks / 2; step != 0; step /= 2) {
    if (isBelow(first + step - 1)) first += step;
  }
  return first;
}

}  // namespace velmora::engine
