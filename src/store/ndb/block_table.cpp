#include "store/ndb/block_table.h"

#include <algorithm>
#include <cassert>

namespace velmora::ndb {

std::optional<Bid> BlockTable::NextBid(bool internal) const {
  if (entries_.size() == kMaxBlocks) return std::nullopt;
  return Bid{NumberOf(entries_.size()) | (internal ? kBidInternal : 0)};
}

void BlockTable::Append(bool internal, std::uint64_t ib, std::uint16_t cb) {
  assert(cb > 0 && cb <= kMaxBlockData);
  const std::uint64_t slot = ib / kSlotSize;
  entries_.push_back({.slotLow = static_cast<std::uint16_t>(slot),
                      .slotHigh = static_cast<std::uint16_t>(slot >> 16),
                      .cb = static_cast<std::uint16_t>(cb & ((1u << kSizeBits) - 1)),
                      .isInternal = internal});
  ++count_;
}

std::optional<BlockTable::Block> BlockTable::Find(Bid bid) const {
  const auto index = IndexOf(bid);
  return index ? std::optional(BlockOf(entries_[*index], *index)) : std::nullopt;
}

bool BlockTable::AddReference(Bid bid) {
  const auto index = IndexOf(bid);
  if (!index) return false;
  const std::uint16_t references = ReferencesOf(entries_[*index], *index);
  if (references == kMaxReferences) return false;
  SetReferences(*index, references + 1);
  return true;
}

std::uint16_t BlockTable::DropReference(Bid bid) {
  const auto index = IndexOf(bid);
  assert(index && ReferencesOf(entries_[*index], *index) > 0);
  const auto left = static_cast<std::uint16_t>(ReferencesOf(entries_[*index], *index) - 1);
  SetReferences(*index, left);
  return left;
}

void BlockTable::Remove(Bid bid) {
  const auto index = IndexOf(bid);
  assert(index);
  SetReferences(*index, 0);
  entries_[*index] = {};
  --count_;
}

void BlockTable::SetReferences(std::size_t index, std::uint16_t references) {
  Entry& entry = entries_[index];
  if (references >= kManyReferences) {
    many_[index] = references;
  } else if (entry.references == kManyReferences) {
    many_.erase(index);
  }
  entry.references = static_cast<std::uint16_t>(std::min<unsigned>(references, kManyReferences)) & kManyReferences;
}

std::optional<std::size_t> BlockTable::IndexOf(Bid bid) const {
  const std::uint64_t index = Value(bid) / kBidStep;
  if (index == 0 || index >= entries_.size()) return std::nullopt;
  const Entry& entry = entries_[index];
  return entry.Exists() && (entry.isInternal != 0) == IsInternal(bid) ? std::optional(index) : std::nullopt;
}

}  // namespace velmora::ndb
