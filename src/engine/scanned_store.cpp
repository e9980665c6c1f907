#include "engine/scanned_store.h"

#include <zlib.h>

#include <span>

#include "engine/block_proof.h"

namespace velmora::engine {
namespace {

/// Replaces a packed block by its content; false when it is no whole stream of that content.
bool Inflate(std::vector<std::byte>& bytes, std::uint32_t size) {
  std::vector<std::byte> content(size);
  uLongf length = size;
  const int result = uncompress(reinterpret_cast<Bytef*>(content.data()), &length,
                                reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  bytes = std::move(content);
  return result == Z_OK && length == size;
}

}  // namespace

Result<void> ScannedStore::ReadBlock(Bid bid, std::vector<std::byte>& out) const {
  const std::uint64_t id = Value(bid) & ~std::uint64_t{1};
  auto block = index.FindExact(Bid{id});
  if (!block) block = index.FindExact(Bid{id | 1});
  if (!block || id == 0) return Fail(FailureKind::kNotFound, Named("block", id), id, "the store has no such block");

  out.resize(EndOf(layout, *block) - block->offset);
  const auto read = source.Read(block->offset, out);
  if (!read) return tl::unexpected(read.error());
  const ByteView bytes = ByteView(out).Slice(0, *read);
  std::uint64_t mostSummed = block->size;
  const Proof proof = ProveBlock(layout, *block, bytes, mostSummed);
  const ProvenTrailer trailer = TrailerOf(layout, *block, bytes);
  if (proof == Proof::kNone || trailer.bid != block->bid) {
    return Corrupt(Named("block", id), block->offset, "the trailer is another block's");
  }
  if (proof != Proof::kWhole) return Corrupt(Named("block", id), block->offset, "the checksum does not fit");

  out.resize(block->size);
  if (IsInternal(bid)) return {};
  DecodeBlock(blockEncoding, block->bid, out);
  if (trailer.inflatedSize != block->size && !Inflate(out, trailer.inflatedSize)) {
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
