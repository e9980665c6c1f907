// The node entries that the node scan kept.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/block_record.h"
#include "store/format/ids.h"

namespace velmora::engine {

/// Of node ids the low 32 bits, since they have no more; block ids are whole.
///
/// A sound page of an upper level of the node tree is read like a leaf, so its keys, page ids and file
/// offsets come out as the fields of records. They take their part in the recovery, but nobody misses
/// what such a record names.
struct NodeRecord {
  NodeRecord() = default;
  NodeRecord(std::uint32_t theNid, std::uint64_t theBidData, std::uint64_t theBidSub, std::uint32_t theNidParent,
             bool isUpper = false)
      : nid(theNid), bidData(Bid{theBidData}), bidSub(Bid{theBidSub}), nidParent(theNidParent), upperPage(isUpper) {}

  std::uint32_t nid = 0;
  Bid bidData{};
  Bid bidSub{};
  std::uint32_t nidParent = 0;
  bool upperPage = false;  ///< every page that gave this record is one of an upper level

  /// A node that may be a folder by its place: one without data, without a parent or below itself is none.
  bool MayBeFolder() const { return LowBid(bidData) != 0 && nidParent != 0 && nid != nidParent; }

  /// By the low halves of its block ids. Where a record came from does not make it another one.
  friend bool operator==(const NodeRecord& a, const NodeRecord& b) {
    return a.nid == b.nid && LowBid(a.bidData) == LowBid(b.bidData) && LowBid(a.bidSub) == LowBid(b.bidSub) &&
           a.nidParent == b.nidParent;
  }
};

/// Ordered by `bidSub`, ascending, and in order of arrival among equals, so nodes without sub-nodes come
/// first, in file order. A record whose four fields equal those of the record that would stand right
/// before it is dropped; a copy with other records of the same `bidSub` in between stays.
///
/// Memory: 36 bytes a record.
class NodeList {
 public:
  /// Takes a record in. Order and duplicates are settled by Settle, all at once.
  void Insert(const NodeRecord& record) { records_.push_back(record); }

  /// Brings the records taken in so far into order and drops the duplicates: O(n log n).
  void Settle();

  const std::vector<NodeRecord>& Records() const { return records_; }

  /// The first record of that id from a leaf of the node tree; null when there is none. O(log n), once settled.
  const NodeRecord* Find(std::uint32_t nid) const;

 private:
  std::vector<NodeRecord> records_;
  std::vector<std::uint32_t> byNid_;  ///< positions of the records from leaves
};

}  // namespace velmora::engine
