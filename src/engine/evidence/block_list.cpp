#include "engine/evidence/block_list.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

namespace velmora::engine {
namespace {

constexpr unsigned kGradeBits = 2;
constexpr unsigned kKindShift = kGradeBits + 1;

std::uint64_t MarksOf(const FoundBlock& block) {
  return std::uint64_t{static_cast<std::uint8_t>(block.kind)} << kKindShift |
         std::uint64_t{block.isNamed} << kGradeBits | static_cast<std::uint8_t>(block.grade);
}

/// A number is read by its first eight bytes and, if it is wide, the one behind them; so there is always as much behind
/// the last. A field has at least one bit, so that the mask needs no exception.
constexpr std::size_t kBehind = sizeof(std::uint64_t) + 1;
constexpr unsigned kWord = 64;

constexpr std::uint64_t Mask(unsigned width) { return ~std::uint64_t{0} >> (kWord - width); }

/// The bits from there on: as many of them as kBitsOfWord, whatever bit of a byte is the first.
constexpr unsigned kBitsOfWord = kWord - 7;
std::uint64_t WordAt(const std::byte* bits, std::size_t at) {
  std::uint64_t word = 0;
  std::memcpy(&word, bits + at / 8, sizeof(word));
  return word >> at % 8;
}

std::uint64_t Get(const std::byte* bits, std::size_t at, unsigned width) {
  std::uint64_t value = WordAt(bits, at);
  const auto shift = static_cast<unsigned>(at % 8);
  if (shift + width > kWord) value |= std::to_integer<std::uint64_t>(bits[at / 8 + 8]) << (kWord - shift);
  return value & Mask(width);
}

/// Into bits that are zero.
void Put(std::byte* bits, std::size_t& at, unsigned width, std::uint64_t value) {
  std::byte* to = bits + at / 8;
  const auto shift = static_cast<unsigned>(at % 8);
  std::uint64_t there = 0;
  std::memcpy(&there, to, sizeof(there));
  there |= value << shift;
  std::memcpy(to, &there, sizeof(there));
  if (shift + width > kWord) to[sizeof(there)] = static_cast<std::byte>(value >> (kWord - shift));
  at += width;
}

std::uint8_t WidthOf(std::uint64_t value) { return static_cast<std::uint8_t>(std::bit_width(value | 1)); }

/// The low bits that are zero in all numbers, `all` being what is set in any.
std::uint8_t LowZeros(std::uint64_t all) { return all == 0 ? 0 : static_cast<std::uint8_t>(std::countr_zero(all)); }

}  // namespace

BlockList::BlockList(std::span<const FoundBlock> blocks) {
  for (const FoundBlock& block : blocks) Add(block);
}

void BlockList::Add(const FoundBlock& block) {
  assert(empty() || IdOf(size() - 1) <= block.bid);
  if (tail_.empty()) tail_.reserve(kGroup);
  tail_.push_back(block);
  if (tail_.size() < kGroup) return;
  groups_.push_back(Pack(tail_));
  tail_.clear();
}

BlockList::Group BlockList::Pack(std::span<const FoundBlock> blocks) {
  Group group;
  group.firstId = Value(blocks.front().bid);
  group.leastOffset = std::ranges::min(blocks, {}, &FoundBlock::offset).offset;
  std::uint64_t ids = 0;
  std::uint64_t offsets = 0;
  std::uint64_t sizes = 0;
  std::uint64_t marks = 0;
  for (const FoundBlock& block : blocks) {
    ids |= Value(block.bid) - group.firstId;
    offsets |= block.offset - group.leastOffset;
    sizes |= block.cb;
    marks |= MarksOf(block);
  }
  group.idShift = LowZeros(ids);
  group.offsetShift = LowZeros(offsets);
  group.idBits = WidthOf(ids >> group.idShift);
  group.offsetBits = WidthOf(offsets >> group.offsetShift);
  group.sizeBits = WidthOf(sizes);
  group.markBits = WidthOf(marks);
  group.blockBits = static_cast<std::uint8_t>(group.idBits + group.offsetBits + group.sizeBits + group.markBits);
  group.bits = std::make_unique<std::byte[]>(group.Bytes());
  std::size_t at = 0;
  for (const FoundBlock& block : blocks) {
    Put(group.bits.get(), at, group.idBits, (Value(block.bid) - group.firstId) >> group.idShift);
    Put(group.bits.get(), at, group.offsetBits, (block.offset - group.leastOffset) >> group.offsetShift);
    Put(group.bits.get(), at, group.sizeBits, block.cb);
    Put(group.bits.get(), at, group.markBits, MarksOf(block));
  }
  return group;
}

std::size_t BlockList::Group::Bytes() const { return (kGroup * blockBits + 7) / 8 + kBehind; }

std::uint64_t BlockList::Group::PackedId(std::size_t i) const { return Get(bits.get(), i * blockBits, idBits); }

FoundBlock BlockList::Group::Block(std::size_t i) const {
  const std::size_t at = i * blockBits;
  const unsigned sizeAt = unsigned{idBits} + offsetBits;
  const unsigned marksAt = sizeAt + sizeBits;
  const auto blockOf = [this](std::uint64_t id, std::uint64_t offset, std::uint64_t size, std::uint64_t marks) {
    return FoundBlock{.bid = Bid{firstId + (id << idShift)},
                      .offset = leastOffset + (offset << offsetShift),
                      .cb = static_cast<std::uint16_t>(size),
                      .kind = static_cast<BlockKind>(marks >> kKindShift),
                      .grade = static_cast<Grade>(marks & Mask(kGradeBits)),
                      .isNamed = (marks >> kGradeBits & 1) != 0};
  };
  if (blockBits > kBitsOfWord) {
    const auto get = [&](unsigned from, unsigned width) { return Get(bits.get(), at + from, width); };
    return blockOf(get(0, idBits), get(idBits, offsetBits), get(sizeAt, sizeBits), get(marksAt, markBits));
  }
  const std::uint64_t word = WordAt(bits.get(), at);  // all of it, of nearly every block
  return blockOf(word & Mask(idBits), word >> idBits & Mask(offsetBits), word >> sizeAt & Mask(sizeBits),
                 word >> marksAt & Mask(markBits));
}

/// The first block whose id is not below one that is above that of the first; kGroup where there is none.
std::size_t BlockList::Group::FirstFrom(std::uint64_t id) const {
  const std::uint64_t packed = ((id - firstId - 1) >> idShift) + 1;
  const std::uint64_t mask = Mask(idBits);
  const auto isBelow = [&](std::size_t i) {
    return (idBits > kBitsOfWord ? PackedId(i) : WordAt(bits.get(), i * blockBits) & mask) < packed;
  };
  if (isBelow(kGroup - 1)) return kGroup;
  // Mostly it is where it would be if ids grew evenly, or the next.
  const std::uint64_t last = PackedId(kGroup - 1);
  const std::size_t expected = last >> 32 != 0 ? 1 : static_cast<std::size_t>(packed * (kGroup - 1) / last);
  if (expected != 0 && isBelow(expected - 1)) {
    if (!isBelow(expected)) return expected;
    if (!isBelow(expected + 1)) return expected + 1;
  }
  std::size_t first = 0;
  for (std::size_t step = kGroup / 2; step != 0; step /= 2) {
    if (isBelow(first + step - 1)) first += step;
  }
  return first;
}

FoundBlock BlockList::operator[](std::size_t number) const {
  const std::size_t group = taken_ + number / kGroup;
  return group < groups_.size() ? groups_[group].Block(number % kGroup) : tail_[number % kGroup];
}

Bid BlockList::IdOf(std::size_t number) const {
  const std::size_t group = taken_ + number / kGroup;
  return group < groups_.size() ? Bid{groups_[group].Id(number % kGroup)} : tail_[number % kGroup].bid;
}

/// The first group that does not begin below the id. Ids grow evenly as a rule, so it is sought first where it would be
/// then.
std::size_t BlockList::FirstGroupFrom(std::uint64_t id) const {
  if (taken_ == groups_.size() || groups_[taken_].firstId >= id) return taken_;
  if (groups_.back().firstId < id) return groups_.size();
  std::size_t below = taken_;  // begins below the id
  std::size_t notBelow = groups_.size() - 1;
  const auto look = [&](std::size_t at) { (groups_[at].firstId < id ? below : notBelow) = at; };
  const double share = static_cast<double>(id - groups_[below].firstId) /
                       static_cast<double>(groups_[notBelow].firstId - groups_[below].firstId);
  const auto expected = below + static_cast<std::size_t>(share * static_cast<double>(notBelow - below));
  for (const std::size_t at : {expected, expected + 1}) {
    if (at > below && at < notBelow) look(at);
  }
  while (notBelow - below > 1) look(below + (notBelow - below) / 2);
  return notBelow;
}

std::size_t BlockList::FirstFrom(Bid bid) const {
  const std::size_t behind = FirstGroupFrom(Value(bid));
  if (behind != taken_) {
    // The last group that begins below the id holds it, or all of it is below.
    const std::size_t number = groups_[behind - 1].FirstFrom(Value(bid));
    if (number < kGroup || behind != groups_.size()) return (behind - 1 - taken_) * kGroup + number;
  } else if (behind != groups_.size()) {
    return 0;
  }
  const auto inTail = std::ranges::lower_bound(tail_, bid, {}, &FoundBlock::bid);
  return size() - static_cast<std::size_t>(tail_.end() - inTail);
}

std::optional<std::size_t> BlockList::NumberOf(Bid bid) const {
  const std::size_t number = FirstFrom(bid);
  return number < size() && IdOf(number) == bid ? std::optional(number) : std::nullopt;
}

bool BlockList::TakeFirst(std::vector<FoundBlock>& out) {
  out.clear();
  if (taken_ == groups_.size()) {
    out.swap(tail_);
    return !out.empty();
  }
  for (std::size_t i = 0; i < kGroup; ++i) out.push_back(groups_[taken_].Block(i));
  groups_[taken_++].bits.reset();
  return true;
}

std::size_t BlockList::Memory() const {
  std::size_t bytes = tail_.capacity() * sizeof(FoundBlock) + groups_.capacity() * sizeof(Group);
  for (std::size_t i = taken_; i < groups_.size(); ++i) bytes += groups_[i].Bytes();
  return bytes;
}

}  // namespace velmora::engine
