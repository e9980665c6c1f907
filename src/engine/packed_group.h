// What is kept of many blocks in the fewest bits that hold it. Nothing is lost whatever the values are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace velmora::engine {

/// A block as numbers.
struct PackedFields {
  std::uint64_t key = 0;  ///< what blocks are ordered by and sought by
  std::uint64_t offset = 0;
  std::uint64_t marks = 0;  ///< whatever else is kept of it
  std::uint32_t size = 0;

  bool operator==(const PackedFields&) const = default;
};

/// Blocks that follow one another by key. They stand near one another as a rule and have keys of one step, so each
/// field takes the bits of the widest, keys counted from the first and offsets from the lowest, without the low bits
/// that are the same in all:
///
///   group   key of the first | lowest offset | low bits left out and bits taken, of either | bits of size and of marks
///   block   key | offset | size | marks
class PackedGroup {
 public:
  static constexpr std::size_t kBlocks = 128;

  /// By ascending key.
  explicit PackedGroup(std::span<const PackedFields, kBlocks> blocks);

  std::uint64_t FirstKey() const { return firstKey_; }
  std::uint64_t Key(std::size_t i) const { return firstKey_ + (PackedKey(i) << keyShift_); }
  PackedFields Fields(std::size_t i) const;

  /// The first block whose key is not below one that is above that of the first; kBlocks where there is none.
  std::size_t FirstFrom(std::uint64_t key) const;

  /// Gives back what it takes beyond itself; its blocks are gone.
  void Drop() { bits_.reset(); }

  /// Bytes that it takes beyond itself.
  std::size_t Memory() const { return bits_ == nullptr ? 0 : Bytes(); }

 private:
  /// A number is read by its first eight bytes and, if it is wide, the one behind them; so there is always as much
  /// behind the last. A field has at least one bit, so that the mask needs no exception.
  static constexpr std::size_t kBehind = sizeof(std::uint64_t) + 1;
  static constexpr unsigned kWord = 64;
  /// So many bits at least are read at once, whatever bit of a byte is the first.
  static constexpr unsigned kBitsOfWord = kWord - 7;

  static constexpr std::uint64_t Mask(unsigned width) { return ~std::uint64_t{0} >> (kWord - width); }

  /// The bits from there on, kBitsOfWord of them at least.
  std::uint64_t WordAt(std::size_t at) const {
    std::uint64_t word = 0;
    std::memcpy(&word, bits_.get() + at / 8, sizeof(word));
    return word >> at % 8;
  }

  std::uint64_t Get(std::size_t at, unsigned width) const {
    std::uint64_t value = WordAt(at);
    const auto shift = static_cast<unsigned>(at % 8);
    if (shift + width > kWord) value |= std::to_integer<std::uint64_t>(bits_[at / 8 + 8]) << (kWord - shift);
    return value & Mask(width);
  }

  std::size_t Bytes() const { return (kBlocks * blockBits_ + 7) / 8 + kBehind; }
  std::uint64_t PackedKey(std::size_t i) const { return Get(i * blockBits_, keyBits_); }

  std::uint64_t firstKey_ = 0;
  std::uint64_t leastOffset_ = 0;
  std::unique_ptr<std::byte[]> bits_;
  std::uint8_t keyShift_ = 0;
  std::uint8_t offsetShift_ = 0;
  std::uint8_t keyBits_ = 0;
  std::uint8_t offsetBits_ = 0;
  std::uint8_t sizeBits_ = 0;
  std::uint8_t markBits_ = 0;
  std::uint8_t blockBits_ = 0;  ///< of all fields
};
static_assert(sizeof(PackedGroup) <= 32);

inline PackedFields PackedGroup::Fields(std::size_t i) const {
  const std::size_t at = i * blockBits_;
  const unsigned sizeAt = unsigned{keyBits_} + offsetBits_;
  const unsigned marksAt = sizeAt + sizeBits_;
  const auto fieldsOf = [this](std::uint64_t key, std::uint64_t offset, std::uint64_t size, std::uint64_t marks) {
    return PackedFields{.key = firstKey_ + (key << keyShift_),
                        .offset = leastOffset_ + (offset << offsetShift_),
                        .marks = marks,
                        .size = static_cast<std::uint32_t>(size)};
  };
  if (blockBits_ > kBitsOfWord) {
    const auto get = [&](unsigned from, unsigned width) { return Get(at + from, width); };
    return fieldsOf(get(0, keyBits_), get(keyBits_, offsetBits_), get(sizeAt, sizeBits_), get(marksAt, markBits_));
  }
  const std::uint64_t word = WordAt(at);  // all of it, of nearly every block
  return fieldsOf(word & Mask(keyBits_), word >> keyBits_ & Mask(offsetBits_), word >> sizeAt & Mask(sizeBits_),
                  word >> marksAt & Mask(markBits_));
}

}  // namespace velmora::engine
