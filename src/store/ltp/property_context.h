// Reads the properties of a node, of any generation.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/format/prop_tag.h"
#include "store/ltp/heap.h"
#include "store/ltp/multi_value.h"
#include "store/ndb/block_source.h"
#include "store/ndb/faults.h"
#include "store/ndb/subnode_tree_reader.h"
#include "text/text.h"

namespace velmora::ltp {

/// A property context opened for reading; its records are read at opening, values on demand.
class PropertyContext {
 public:
  /// `source` and `faults` must outlive the reader. Raises kCorrupt when the node is no property context, and what
  /// keeps its blocks from being read. With `faults`, records that are lost are missing, and so are the sub-nodes of a
  /// block that is lost; a value that is lost fails alone, and what is lost in the middle of a long one reads as zeros.
  [[nodiscard]] static PropertyContext Open(const ndb::BlockSource& source, const ndb::NodeTrees& node,
                                            ndb::Faults* faults = nullptr);

  /// All records by ascending id, one for each.
  std::span<const PropertyRecord> Records() const { return records_; }

  /// The record of a property id, whatever its type; null when it is not there.
  const PropertyRecord* Find(std::uint16_t id) const;

  /// The value bytes of a property (of an object: its 8 bytes); nothing when it is not there with exactly this type.
  /// Raises why it is lost where it is, and kNotSupported where it is larger than `limit`: open TreeOf with a
  /// DataTreeReader.
  static constexpr std::uint64_t kMaxValue = std::uint64_t{64} << 20;
  [[nodiscard]] std::optional<std::vector<std::byte>> Read(PropTag tag, std::uint64_t limit = kMaxValue);

  /// The same into `out`; false for nothing. Who reads many values so asks for memory seldom.
  [[nodiscard]] bool Read(PropTag tag, std::uint64_t limit, std::vector<std::byte>& out);

  /// The value of a small property; nothing when it is not there with this type, or cannot be read.
  std::optional<bool> Boolean(PropTag tag) { return FlagIn(Binary(tag)); }
  std::optional<std::int16_t> Integer16(PropTag tag) { return NumberIn<std::uint16_t>(Binary(tag)); }
  std::optional<std::int32_t> Integer32(PropTag tag) { return NumberIn<std::uint32_t>(Binary(tag)); }
  std::optional<std::int64_t> Integer64(PropTag tag) { return NumberIn<std::uint64_t>(Binary(tag)); }
  std::optional<double> Floating64(PropTag tag);
  std::optional<text::Text> Text(PropTag tag) { return TextIn(Binary(tag)); }
  std::optional<std::vector<std::byte>> Binary(PropTag tag);

  /// What a PtypObject property refers to.
  struct Object {
    Nid nid{};
    std::uint32_t size = 0;
  };
  std::optional<Object> ReadObject(PropTag tag);

  /// Size in bytes of a property's value, without reading it; nothing when it is not there with this type. This and
  /// what follows raise what keeps the blocks in question from being read.
  [[nodiscard]] std::optional<std::uint64_t> SizeOf(PropTag tag);

  /// The tree of a value that lies in a sub-node, e.g. to share it with another node; nothing when the value
  /// lies in the heap or is not there.
  [[nodiscard]] std::optional<ndb::DataTree> TreeOf(PropTag tag);

  /// The same, opened.
  [[nodiscard]] std::optional<ndb::DataTreeReader> OpenTree(PropTag tag);

  /// The list that a tolerant reader was given; null for a strict one.
  ndb::Faults* FaultList() const { return faults_; }

  /// A sub-node of the node.
  [[nodiscard]] std::optional<ndb::SubnodeEntry> FindSubnode(Nid nid) const;
  [[nodiscard]] std::vector<ndb::SubnodeEntry> Subnodes() const;

 private:
  PropertyContext(const ndb::BlockSource& source, Heap heap, Bid bidSub, ndb::Faults* faults)
      : source_(&source), heap_(std::move(heap)), bidSub_(bidSub), faults_(faults) {}

  const PropertyRecord* FindTag(PropTag tag);
  std::optional<Bid> BidOf(PropTag tag);

  const ndb::BlockSource* source_;
  Heap heap_;
  Bid bidSub_;
  ndb::Faults* faults_;
  std::vector<PropertyRecord> records_;
  std::size_t last_ = 0;  ///< the record found last: who copies asks for size, place and bytes of each
};

}  // namespace velmora::ltp
