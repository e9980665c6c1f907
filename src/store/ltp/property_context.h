// Reads the properties of a node.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/format/prop_tag.h"
#include "store/format/property_record.h"
#include "store/ltp/heap.h"
#include "store/ndb/block_source.h"
#include "store/ndb/data_tree_writer.h"
#include "store/ndb/subnode_tree.h"
#include "text/text.h"

namespace velmora::ltp {

/// A property context opened for reading; its records are read at opening, values on demand.
class PropertyContext {
 public:
  /// `source` must outlive the reader. kCorrupt when the node is no property context.
  static Result<PropertyContext> Open(const ndb::BlockSource& source, const ndb::NodeTrees& node);

  /// All records by ascending id, one for each.
  std::span<const PropertyRecord> Records() const { return records_; }

  /// The record of a property id, whatever its type; null when it is not there.
  const PropertyRecord* Find(std::uint16_t id) const;

  /// The value bytes of a property (of an object: its 8 bytes); nothing when it is not there with exactly this type.
  /// Values larger than kMaxValue give kNotSupported: open TreeOf with a DataTreeReader.
  static constexpr std::uint64_t kMaxValue = std::uint64_t{64} << 20;
  Result<std::optional<std::vector<std::byte>>> Read(PropTag tag);

  /// The value of a small property; nothing when it is not there with this type, or cannot be read.
  std::optional<bool> Boolean(PropTag tag);
  std::optional<std::int16_t> Integer16(PropTag tag);
  std::optional<std::int32_t> Integer32(PropTag tag);
  std::optional<std::int64_t> Integer64(PropTag tag);
  std::optional<double> Floating64(PropTag tag);
  std::optional<text::Text> Text(PropTag tag);
  std::optional<std::vector<std::byte>> Binary(PropTag tag);

  /// What a PtypObject property refers to.
  struct Object {
    Nid nid{};
    std::uint32_t size = 0;
  };
  std::optional<Object> ReadObject(PropTag tag);

  /// Size in bytes of a property's value, without reading it; nothing when it is not there with this type.
  Result<std::optional<std::uint64_t>> SizeOf(PropTag tag);

  /// The tree of a value that lies in a sub-node, e.g. to share it with another node; nothing when the value
  /// lies in the heap or is not there.
  Result<std::optional<ndb::DataTree>> TreeOf(PropTag tag);

  /// A sub-node of the node.
  Result<std::optional<ndb::SubnodeEntry>> FindSubnode(Nid nid) const;
  Result<std::vector<ndb::SubnodeEntry>> Subnodes() const;

 private:
  PropertyContext(const ndb::BlockSource& source, Heap heap, Bid bidSub)
      : source_(&source), heap_(std::move(heap)), bidSub_(bidSub) {}

  const PropertyRecord* FindTag(PropTag tag) const;
  template <class T>
  std::optional<T> Number(PropTag tag);

  const ndb::BlockSource* source_;
  Heap heap_;
  Bid bidSub_;
  std::vector<PropertyRecord> records_;
};

}  // namespace velmora::ltp
