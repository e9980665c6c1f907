// The run-long map of a store's local ids of named properties (0x8000 and up) to their long ids.
#pragma once

#include <bitset>
#include <cstdint>
#include <unordered_map>

namespace velmora::recovery {

/// A list of groups, one for each accepted property set of the source, by the set's number. Pairs go to group 0
/// alone: it comes into being with the first pair of an empty map; a map that has groups but no group 0 takes no
/// pair at all.
class NamedPropMap {
 public:
  /// Appends a group without pairs unless there is one with that key.
  void AddNamedPropGroup(std::uint8_t groupKey) { groups_.set(groupKey); }

  /// Takes the pair in unless some pair has the same local id or the same long id: the first to arrive wins.
  void AddNamedProp(std::uint32_t longId, std::uint32_t localId) {
    if (groups_.none()) groups_.set(0);
    if (!groups_.test(0)) return;
    if (longByLocal_.contains(localId) || localByLong_.contains(longId)) return;
    longByLocal_.emplace(localId, longId);
    localByLong_.emplace(longId, localId);
  }

  /// The long id of a local id; an id without a pair is returned as it is.
  std::uint32_t TranslateNamedId(std::uint32_t localId) const {
    const auto pair = longByLocal_.find(localId);
    return pair == longByLocal_.end() ? localId : pair->second;
  }

  void Clear() { *this = {}; }

 private:
  std::bitset<256> groups_;
  std::unordered_map<std::uint32_t, std::uint32_t> longByLocal_;
  std::unordered_map<std::uint32_t, std::uint32_t> localByLong_;
};

}  // namespace velmora::recovery
