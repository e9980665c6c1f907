// The node entries that the node scan kept.
#pragma once

#include <cstdint>
#include <vector>

namespace velmora::engine {

/// Ids are the low 32 bits of what the store holds.
///
/// A sound page of an upper level of the node tree is read like a leaf, so its keys, page ids and file
/// offsets come out as the fields of records. They take their part in the recovery, but nobody misses
/// what such a record names.
struct NodeRecord {
  std::uint32_t nid = 0;
  std::uint32_t bidData = 0;
  std::uint32_t bidSub = 0;
  std::uint32_t nidParent = 0;
  bool upperPage = false;  ///< every page that gave this record is one of an upper level

  /// Where a record came from does not make it another one.
  friend bool operator==(const NodeRecord& a, const NodeRecord& b) {
    return a.nid == b.nid && a.bidData == b.bidData && a.bidSub == b.bidSub && a.nidParent == b.nidParent;
  }
};

/// Ordered by `bidSub`, ascending, and in order of arrival among equals, so nodes without sub-nodes come
/// first, in file order. A record whose four fields equal those of the record that would stand right
/// before it is dropped; a copy with other records of the same `bidSub` in between stays.
class NodeList {
 public:
  /// Takes a record in. Order and duplicates are settled by Settle, all at once.
  void Insert(const NodeRecord& record) { records_.push_back(record); }

  /// Brings the records taken in so far into order and drops the duplicates: O(n log n).
  void Settle();

  std::vector<NodeRecord>& Records() { return records_; }
  const std::vector<NodeRecord>& Records() const { return records_; }

  void Clear() { records_ = {}; }

 private:
  std::vector<NodeRecord> records_;
};

}  // namespace velmora::engine
