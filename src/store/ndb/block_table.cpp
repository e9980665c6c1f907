#include "store/ndb/block_table.h"

#include <cassert>

namespace velmora::ndb {

std::optional<Bid> BlockTable::NextBid(bool internal) const {
  if (entries_.size() == kMaxBlocks) return std::nullopt;
  return Bid{NumberOf(entries_.size()) | (internal ? kBidInternal : 0)};
}

void BlockTable::Append(bool internal, std::uint64_t ib, std::uint16_t cb) {
  assert(cb > 0 && cb <= kMaxBlockData);
  entries_.push_back(
      {static_cast<std::uint32_t>(ib / kSlotSize), static_cast<std::uint16_t>(internal ? cb | kInternalFlag : cb), 0});
  ++count_;
}

std::optional<BlockTable::Block> BlockTable::Find(Bid bid) const {
  const Entry* entry = EntryOf(bid);
  if (entry == nullptr) return std::nullopt;
  return BlockOf(*entry);
}

bool BlockTable::AddReference(Bid bid) {
  Entry* entry = EntryOf(bid);
  if (entry == nullptr || entry->references == kMaxReferences) return false;
  ++entry->references;
  return true;
}

std::uint16_t BlockTable::DropReference(Bid bid) {
  Entry* entry = EntryOf(bid);
  assert(entry != nullptr && entry->references > 0);
  return --entry->references;
}

void BlockTable::Remove(Bid bid) {
  Entry* entry = EntryOf(bid);
  assert(entry != nullptr);
  *entry = {};
  --count_;
}

const BlockTable::Entry* BlockTable::EntryOf(Bid bid) const {
  const std::uint64_t index = Value(bid) / kBidStep;
  if (index == 0 || index >= entries_.size()) return nullptr;
  const Entry& entry = entries_[index];
  const bool internal = (entry.cbAndKind & kInternalFlag) != 0;
  return entry.slot != 0 && internal == IsInternal(bid) ? &entry : nullptr;
}

}  // namespace velmora::ndb
