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

/// A number is read by its first eight bytes and the one behind them, so there is always as much behind the last.
constexpr std::size_t kBehind = sizeof(std::uint64_t) + 1;

std::uint64_t Get(const std::byte* bits, std::size_t at, unsigned width) {
  const std::byte* from = bits + at / 8;
  const auto shift = static_cast<unsigned>(at % 8);
  std::uint64_t value = 0;
  std::memcpy(&value, from, sizeof(value));
  value >>= shift;
  if (shift + width > 64) value |= std::to_integer<std::uint64_t>(from[sizeof(value)]) << (64 - shift);
  return width == 64 ? value : value & ((std::uint64_t{1} << width) - 1);
}

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

std::uint8_t WidthOf(std::uint64_t value) { return static_cast<std::uint8_t>(std::bit_width(value)); }

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

std::size_t BlockList::Group::Bytes() const { return (kGroup * BitsOfBlock() + 7) / 8 + kBehind; }

std::uint64_t BlockList::Group::Id(std::size_t i) const {
  return firstId + (Get(bits.get(), i * BitsOfBlock(), idBits) << idShift);
}

FoundBlock BlockList::Group::Block(std::size_t i) const {
  std::size_t at = i * BitsOfBlock() + idBits;
  const std::uint64_t offset = Get(bits.get(), at, offsetBits) << offsetShift;
  at += offsetBits;
  const std::uint64_t size = Get(bits.get(), at, sizeBits);
  const std::uint64_t marks = Get(bits.get(), at + sizeBits, markBits);
  return {.bid = Bid{Id(i)},
          .offset = leastOffset + offset,
          .cb = static_cast<std::uint16_t>(size),
          .kind = static_cast<BlockKind>(marks >> kKindShift),
          .grade = static_cast<Grade>(marks & ((1u << kGradeBits) - 1)),
          .isNamed = (marks >> kGradeBits & 1) != 0};
}

FoundBlock BlockList::operator[](std::size_t number) const {
  const std::size_t group = number / kGroup;
  return group < groups_.size() ? groups_[group].Block(number % kGroup) : tail_[number % kGroup];
}

Bid BlockList::IdOf(std::size_t number) const {
  const std::size_t group = number / kGroup;
  return group < groups_.size() ? Bid{groups_[group].Id(number % kGroup)} : tail_[number % kGroup].bid;
}

std::size_t BlockList::FirstFrom(Bid bid) const {
  // The last group that begins below the id holds it, or ends ahead of it.
  const auto behind = std::ranges::lower_bound(groups_, Value(bid), {}, &Group::firstId);
  auto begin = static_cast<std::size_t>(behind - groups_.begin()) * kGroup;
  std::size_t end = behind == groups_.end() ? size() : begin;
  begin -= std::min(begin, kGroup);
  while (begin < end) {
    const std::size_t middle = begin + (end - begin) / 2;
    if (IdOf(middle) < bid) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin;
}

std::optional<std::size_t> BlockList::NumberOf(Bid bid) const {
  const std::size_t number = FirstFrom(bid);
  return number < size() && IdOf(number) == bid ? std::optional(number) : std::nullopt;
}

bool BlockList::TakeFirst(std::vector<FoundBlock>& out) {
  out.clear();
  if (groups_.empty()) {
    out.swap(tail_);
    return !out.empty();
  }
  for (std::size_t i = 0; i < kGroup; ++i) out.push_back(groups_.front().Block(i));
  groups_.pop_front();
  return true;
}

std::size_t BlockList::Memory() const {
  std::size_t bytes = tail_.capacity() * sizeof(FoundBlock) + groups_.size() * sizeof(Group);
  for (const Group& group : groups_) bytes += group.Bytes();
  return bytes;
}

}  // namespace velmora::engine
