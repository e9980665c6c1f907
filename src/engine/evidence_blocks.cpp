#include <algorithm>

#include "engine/evidence.h"
#include "engine/inflate_part.h"
#include "store/format/block.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

bool IsWhole(const FoundBlock& block) { return block.grade == Grade::kProven || block.grade == Grade::kMoved; }

/// The content of a block of which bytes are wrong or gone: what is there of it.
void UnpackPart(std::vector<std::byte>& stored, const FoundBlock& block, const Evidence& evidence) {
  if (IsInternal(block.bid)) return;
  DecodeBlock(evidence.encoding, block.bid, stored);
  if (evidence.layout->offInflatedSize == 0) return;
  // Whether it was packed the trailer would tell, if one could rely on it.
  auto content = InflatePart(stored, evidence.layout->maxBlockData);
  if (!content.empty()) stored = std::move(content);
}

}  // namespace

Result<void> EvidenceBlocks::ReadBlock(Bid bid, std::vector<std::byte>& out) const {
  const FoundBlock* block = evidence_.Find(bid);
  if (block == nullptr) return Fail(FailureKind::kNotFound, Named("block", bid), Value(bid), "no such block was found");
  if (!IsWhole(*block)) {
    out.resize(block->cb);
    out.resize(source_.ReadAround(block->offset, out));
    UnpackPart(out, *block, evidence_);
    if (!out.empty()) return {};
    return Corrupt(Named("block", bid), block->offset, "nothing of the block can be read");
  }
  const Generation& layout = *evidence_.layout;
  out.resize(BlockSizeOnDisk(block->cb, layout));
  const Result<std::size_t> read = source_.Read(block->offset, out);
  if (!read) return tl::unexpected(read.error());
  const BlockTrailer trailer = DecodeBlockTrailer(std::span(out).last(layout.blockTrailerSize), layout);
  if (*read != out.size() || trailer.dwCRC != WeakCrc(std::span(out).first(block->cb))) {
    return Corrupt(Named("block", bid), block->offset, "the block was whole and is not any more");
  }
  if (UnpackBlock(out, block->bid, block->cb, evidence_.encoding, layout)) return {};
  return Corrupt(Named("block", bid), block->offset, "the block does not inflate to its size");
}

std::optional<ndb::NodeEntry> EvidenceBlocks::FindNode(Nid nid) const {
  const auto found =
      std::ranges::lower_bound(judgement_.nodes, nid, {}, [](const NodeClaim& claim) { return claim.node.nid; });
  if (found == judgement_.nodes.end() || found->node.nid != nid) return std::nullopt;
  if (found->standing != Standing::kLive && found->standing != Standing::kDoubtful) return std::nullopt;
  return found->node;
}

bool EvidenceBlocks::IsTrusted(Bid bid) const {
  const FoundBlock* block = evidence_.Find(bid);
  return block != nullptr && IsWhole(*block);
}

}  // namespace velmora::engine
