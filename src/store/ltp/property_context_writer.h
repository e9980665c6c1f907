// Writes the properties of a node: a heap with a tree of property records, and sub-nodes for what is large.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/format/prop_tag.h"
#include "store/ltp/heap_writer.h"
#include "store/ndb/data_tree_writer.h"
#include "store/ndb/ndb_writer.h"
#include "store/ndb/subnode_tree_writer.h"
#include "text/text.h"

namespace velmora::ltp {

/// One property context after another: properties and sub-nodes are added in any order, then Finish writes
/// the node and leaves the writer ready for the next. Values are bytes as the store holds them: numbers
/// little-endian in the size of their type, texts UTF-16LE without terminator, multiple values as
/// multi_value.h encodes them. What cannot be added is raised at once; the node is to be given up then (Clear).
class PropertyContextWriter {
 public:
  /// Larger values go to a sub-node of their own.
  static constexpr std::size_t kHeapValueLimit = 1024;

  explicit PropertyContextWriter(ndb::NdbWriter& ndb);

  /// A property of any type but PtypObject. A value whose size does not fit its type, a text of odd length
  /// and a second property of the same id (by Finish) raise kCorrupt. An empty value of a type of variable
  /// size is a property that is there and empty.
  void Add(PropTag tag, std::span<const std::byte> value);

  void AddBoolean(PropTag tag, bool value);
  void AddInteger16(PropTag tag, std::int16_t value);
  void AddInteger32(PropTag tag, std::int32_t value);
  /// PtypInteger64, PtypTime, PtypCurrency: any type of 8 bytes.
  void AddInteger64(PropTag tag, std::int64_t value);
  /// PtypFloating64, PtypFloatingTime.
  void AddFloating64(PropTag tag, double value);
  void AddText(PropTag tag, text::TextView value);

  /// A property whose value was streamed; small ones end in the heap. `value` is empty afterwards.
  void AddStream(PropTag tag, ndb::DataTreeWriter& value);

  /// A property whose value is a tree that exists already; it is shared, not copied. `tree.bid` not 0.
  void AddTree(PropTag tag, const ndb::DataTree& tree);

  /// A PtypObject property that refers to the sub-node `nid`, which is added with AddSubnode.
  void AddObject(PropTag tag, Nid nid, std::uint32_t size);

  /// A PtypInteger32 property whose value is the data size of the finished node, all sub-nodes included; of
  /// a larger node, the largest number. At most one.
  void AddDataSize(PropTag tag);

  /// A sub-node beside the heap: a table, an attachment, an embedded message, an object's data.
  void AddSubnode(Nid nid, const ndb::WrittenNode& node);

  /// A sub-node id of type kLtp that is free in this node: 0x803F, 0x805F, ...
  Nid NewSubnodeNid();

  /// Sum of the sizes of the values so far: 1, 2, 4 or 8 bytes for numbers, all bytes of other values, for
  /// an object the size given with it.
  std::uint64_t ValueBytes() const { return valueBytes_; }

  bool Has(std::uint16_t id) const;

  /// Writes the node; nothing refers to it yet. Gives up what was added where that fails.
  [[nodiscard]] ndb::WrittenNode Finish();

  /// Gives up what was added.
  void Clear();

 private:
  void OpenHeap();
  void AddRecord(PropTag tag, std::uint32_t dwValueHnid);
  void AddHeapValue(PropTag tag, std::span<const std::byte> value);
  void AddSubnodeValue(PropTag tag, const ndb::DataTree& tree);
  [[nodiscard]] ndb::WrittenNode WriteNode();

  ndb::NdbWriter& ndb_;
  HeapWriter heap_;
  ndb::SubnodeTreeWriter subnodes_;
  std::vector<PropertyRecord> records_;
  std::optional<std::uint16_t> dataSizeId_;  ///< the property that AddDataSize named
  std::uint32_t nextSubnodeIndex_;
  std::uint64_t valueBytes_ = 0;
};

}  // namespace velmora::ltp
