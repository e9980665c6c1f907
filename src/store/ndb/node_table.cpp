#include "store/ndb/node_table.h"

#include <algorithm>

namespace velmora::ndb {
namespace {

std::size_t ListOf(Nid nid) { return static_cast<std::size_t>(TypeOf(nid)); }

std::uint32_t Half(Bid bid) { return static_cast<std::uint32_t>(Value(bid) >> 1); }

}  // namespace

void NodeTable::Set(const NodeEntry& node) {
  const Entry entry{node.nid, node.nidParent, Half(node.trees.bidData), Half(node.trees.bidSub)};
  List& list = byType_[ListOf(node.nid)];
  const auto place =
      std::lower_bound(list.begin(), list.end(), node.nid, [](const Entry& a, Nid nid) { return a.nid < nid; });
  if (place == list.end() || place->nid != node.nid) {
    list.insert(place, entry);
    ++count_;
  } else {
    if (place->data == kRemoved) ++count_;
    *place = entry;
  }
}

void NodeTable::Remove(Nid nid) {
  if (const Entry* entry = EntryOf(nid)) {
    const_cast<Entry*>(entry)->data = kRemoved;
    --count_;
  }
}

std::optional<NodeEntry> NodeTable::Find(Nid nid) const {
  const Entry* entry = EntryOf(nid);
  if (entry == nullptr) return std::nullopt;
  return NodeOf(*entry);
}

void NodeTable::Compact() {
  for (List& list : byType_) {
    std::erase_if(list, [](const Entry& entry) { return entry.data == kRemoved; });
  }
}

NodeEntry NodeTable::NodeOf(const Entry& entry) {
  return {entry.nid, {Bid{std::uint64_t{entry.data} << 1}, Bid{std::uint64_t{entry.sub} << 1}}, entry.nidParent};
}

const NodeTable::Entry* NodeTable::NextOf(std::array<List::const_iterator, kNidTypeCount>& at) const {
  const Entry* next = nullptr;
  for (std::size_t type = 0; type < kNidTypeCount; ++type) {
    if (at[type] == byType_[type].end()) continue;
    const Entry& candidate = *at[type];
    if (next == nullptr || candidate.nid < next->nid) next = &candidate;
  }
  if (next != nullptr) ++at[ListOf(next->nid)];
  return next;
}

const NodeTable::Entry* NodeTable::EntryOf(Nid nid) const {
  const List& list = byType_[ListOf(nid)];
  const auto place = std::lower_bound(list.begin(), list.end(), nid, [](const Entry& a, Nid id) { return a.nid < id; });
  return place != list.end() && place->nid == nid && place->data != kRemoved ? &*place : nullptr;
}

}  // namespace velmora::ndb
