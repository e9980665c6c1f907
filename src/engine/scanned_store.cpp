#include "engine/scanned_store.h"

#include "store/format/block.h"

namespace velmora::engine {

Result<void> ScannedStore::ReadBlock(Bid bid, std::vector<std::byte>& out) const {
  const std::uint64_t id = Value(Canonical(bid));
  auto block = index.FindExact(Bid{id});
  if (!block) block = index.FindExact(Bid{id | 1});
  if (!block || id == 0) return Fail(FailureKind::kNotFound, Named("block", id), id, "the store has no such block");

  out.resize(BlockSizeOnDisk(block->size, layout));
  const auto read = source.Read(block->offset, out);
  if (!read) return tl::unexpected(read.error());
  out.resize(*read);
  const std::string_view fault = WhyNotBlock(out, {block->bid, block->offset}, block->size, layout);
  if (!fault.empty()) return Corrupt(Named("block", id), block->offset, std::string(fault));
  if (!UnpackBlock(out, block->bid, block->size, blockEncoding, layout)) {
    return Corrupt(Named("block", id), block->offset, "it cannot be inflated");
  }
  return {};
}

std::optional<ndb::NodeEntry> ScannedStore::FindNode(Nid nid) const {
  const NodeRecord* node = nodes.Find(Value(nid));
  if (node == nullptr) return std::nullopt;
  return ndb::NodeEntry{nid, {node->bidData, node->bidSub}, Nid{node->nidParent}};
}

}  // namespace velmora::engine
