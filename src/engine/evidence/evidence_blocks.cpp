#include <algorithm>

#include "engine/evidence/block_evidence.h"
#include "engine/evidence/evidence.h"
#include "engine/evidence/inflate_part.h"
#include "store/format/block.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

/// A stretch of stored zeros of this length was overwritten: the encodings leave none of content.
constexpr std::size_t kOverwritten = 64;

/// Decodes what is there of a data block; stretches that were overwritten with zeros stay zeros.
void DecodePart(std::vector<std::byte>& stored, Bid bid, CryptMethod encoding) {
  std::vector<std::pair<std::size_t, std::size_t>> zeros;
  for (std::size_t at = 0; at < stored.size();) {
    const auto isZero = [](std::byte byte) { return byte == std::byte{0}; };
    const auto begin = std::find_if(stored.begin() + static_cast<std::ptrdiff_t>(at), stored.end(), isZero);
    const auto end = std::find_if_not(begin, stored.end(), isZero);
    const auto from = static_cast<std::size_t>(begin - stored.begin());
    at = static_cast<std::size_t>(end - stored.begin());
    if (at - from >= kOverwritten) zeros.emplace_back(from, at);
  }
  DecodeBlock(encoding, bid, stored);
  for (const auto& [from, to] : zeros) std::fill(stored.begin() + from, stored.begin() + to, std::byte{0});
}

/// The content of a block of which bytes are wrong or gone: what is there of it.
void UnpackPart(std::vector<std::byte>& stored, const FoundBlock& block, const Evidence& evidence) {
  if (IsInternal(block.bid)) return;
  DecodePart(stored, block.bid, evidence.encoding);
  if (evidence.layout->offInflatedSize == 0) return;
  // Whether it was packed the trailer would tell, if one could rely on it.
  auto content = InflatePart(stored, evidence.layout->maxBlockData);
  if (!content.empty()) stored = std::move(content);
}

}  // namespace

bool EvidenceBlocks::FindBlock(Bid bid, std::vector<std::byte>& out) const {
  const std::optional<FoundBlock> block = evidence_.Find(bid);
  if (!block) return false;
  if (!IsWhole(*block)) {
    out.resize(block->cb);
    out.resize(source_.ReadAround(block->offset, out));
    UnpackPart(out, *block, evidence_);
    if (!out.empty()) return true;
    RaiseCorrupt({ObjectKind::kBlock, bid}, block->offset, "nothing of the block can be read");
  }
  static_cast<void>(ReadWhole(*block, out));
  if (UnpackBlock(out, block->bid, block->cb, evidence_.encoding, *evidence_.layout)) return true;
  RaiseCorrupt({ObjectKind::kBlock, bid}, block->offset, "the block does not inflate to its size");
}

EvidenceBlocks::Whole EvidenceBlocks::ReadWhole(const FoundBlock& block, std::vector<std::byte>& out) const {
  const Generation& layout = *evidence_.layout;
  out.resize(BlockSizeOnDisk(block.cb, layout));
  const std::size_t read = ValueOrRaise(source_.Read(block.offset, out));
  const BlockTrailer trailer = DecodeBlockTrailer(std::span(out).last(layout.blockTrailerSize), layout);
  const StoredData data{std::span(out).first(block.cb), trailer.dwCRC};
  if (read != out.size() || data.crc != WeakCrc(data.bytes)) {
    RaiseCorrupt({ObjectKind::kBlock, block.bid}, block.offset, "the block was whole and is not any more");
  }
  return {data, trailer};
}

std::optional<std::size_t> EvidenceBlocks::SizeOf(Bid bid) const {
  if (evidence_.layout->offInflatedSize != 0) return std::nullopt;
  const std::optional<FoundBlock> block = evidence_.Find(bid);
  return block && IsWhole(*block) ? std::optional<std::size_t>(block->cb) : std::nullopt;
}

std::optional<StoredData> EvidenceBlocks::FindStored(Bid bid, std::vector<std::byte>& out) const {
  const std::optional<FoundBlock> block = evidence_.Find(bid);
  if (!block || !IsWhole(*block)) return std::nullopt;
  return ReadWhole(*block, out).data;
}

std::optional<ndb::NodeEntry> EvidenceBlocks::FindNode(Nid nid) const {
  const auto found =
      std::ranges::lower_bound(judgement_.nodes, nid, {}, [](const NodeClaim& claim) { return claim.node.nid; });
  if (found == judgement_.nodes.end() || found->node.nid != nid) return std::nullopt;
  if (!IsInUse(found->standing)) return std::nullopt;
  return found->node;
}

BlockKind EvidenceBlocks::KindOf(const FoundBlock& block) const {
  if (block.kind != BlockKind::kPacked) return block.kind;
  std::vector<std::byte> bytes;
  const auto whole = IfReadable([&] { return ReadWhole(block, bytes); });
  if (!whole) return BlockKind::kData;
  return engine::KindOf(whole->data.bytes, whole->trailer, *evidence_.layout, evidence_.encoding);
}

bool EvidenceBlocks::IsTrusted(Bid bid) const {
  const std::optional<FoundBlock> block = evidence_.Find(bid);
  return block && IsWhole(*block);
}

}  // namespace velmora::engine
