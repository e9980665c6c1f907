#include "engine/scanned_store.h"

#include "store/format/block.h"

namespace velmora::engine {

bool ScannedStore::FindBlock(Bid bid, std::vector<std::byte>& out) const {
  const std::uint64_t id = Value(Canonical(bid));
  auto block = index.FindExact(Bid{id});
  if (!block) block = index.FindExact(Bid{id | 1});
  if (!block || id == 0) return false;

  out.resize(BlockSizeOnDisk(block->size, layout));
  out.resize(ValueOrRaise(source.Read(block->offset, out)));
  const std::string_view fault = WhyNotBlock(out, {block->bid, block->offset}, block->size, layout);
  if (!fault.empty()) RaiseCorrupt({ObjectKind::kBlock, id}, block->offset, fault);
  if (!UnpackBlock(out, block->bid, block->size, blockEncoding, layout)) {
    RaiseCorrupt({ObjectKind::kBlock, id}, block->offset, "it cannot be inflated");
  }
  return true;
}

std::optional<ndb::NodeEntry> ScannedStore::FindNode(Nid nid) const {
  const NodeRecord* node = nodes.Find(Value(nid));
  if (node == nullptr) return std::nullopt;
  return ndb::NodeEntry{nid, {node->bidData, node->bidSub}, Nid{node->nidParent}};
}

}  // namespace velmora::engine
