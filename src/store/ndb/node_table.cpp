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
  const auto place = PlaceOf(node.nid);
  if (place == list.end() || place->nid != node.nid) {
    list.insert(place, entry);
    ++count_;
  } else {
    if (place->data == kRemoved) ++count_;
    list[static_cast<std::size_t>(place - list.cbegin())] = entry;
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

/// Most nodes that anybody asks for are new. To look for those among all others would take ever longer.
NodeTable::List::const_iterator NodeTable::PlaceOf(Nid nid) const {
  const List& list = byType_[ListOf(nid)];
  if (list.empty() || list.back().nid < nid) return list.end();
  return std::ranges::lower_bound(list, nid, {}, &Entry::nid);
}

const NodeTable::Entry* NodeTable::EntryOf(Nid nid) const {
  const List& list = byType_[ListOf(nid)];
  const auto place = PlaceOf(nid);
  return place != list.end() && place->nid == nid && place->data != kRemoved ? &*place : nullptr;
}

}  // namespace velmora::ndb
