// All nodes of a store that is being written, 16 bytes each: the node tree before it becomes pages.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <ranges>
#include <vector>

#include "store/ndb/block_source.h"

namespace velmora::ndb {

/// One sorted list a type: ids of a type come from a counter, so a new node nearly always goes to the end. The lists
/// grow by pieces: while one that doubles is moved, it takes three times its memory.
class NodeTable {
 public:
  /// Adds or replaces a node.
  void Set(const NodeEntry& node);

  /// Removes a node; the list closes up with the next Compact.
  void Remove(Nid nid);

  std::optional<NodeEntry> Find(Nid nid) const;

  std::size_t Count() const { return count_; }

  /// Forgets the places of removed nodes.
  void Compact();

  /// Calls `visit(node)` for each node by ascending id.
  template <class Visit>
  void ForEach(Visit visit) const {
    std::vector<std::ranges::subrange<List::const_iterator>> rest;  // of the types that have any
    for (const List& list : byType_) {
      if (!list.empty()) rest.emplace_back(list.begin(), list.end());
    }
    while (!rest.empty()) {
      const auto next = std::ranges::min_element(rest, {}, [](const auto& list) { return list.front().nid; });
      if (next->front().data != kRemoved) visit(NodeOf(next->front()));
      next->advance(1);
      if (next->empty()) rest.erase(next);
    }
  }

 private:
  struct Entry {
    Nid nid;
    Nid nidParent;
    std::uint32_t data;  ///< a block id needs 33 bits, of which the lowest is 0; kRemoved
    std::uint32_t sub;
  };
  static_assert(sizeof(Entry) == 16);
  static constexpr std::uint32_t kRemoved = 0xFFFFFFFF;

  using List = std::deque<Entry>;

  static NodeEntry NodeOf(const Entry& entry);
  List::const_iterator PlaceOf(Nid nid) const;  ///< of the first one of its type whose id is not below
  const Entry* EntryOf(Nid nid) const;

  std::array<List, kNidTypeCount> byType_;
  std::size_t count_ = 0;
};

}  // namespace velmora::ndb
