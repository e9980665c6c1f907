#include "engine/block_classifier.h"

#include <algorithm>
#include <array>
#include <limits>

#include "engine/block_reader.h"
#include "engine/block_trailer.h"

namespace velmora::engine {
namespace {

constexpr std::uint32_t kAttachmentTable = 0x671;

/// What the tests look at: the count, the first entry of a sub-node block, the signature of a heap.
using Head = std::array<std::byte, 12>;

void ListOrphan(EngineState& state, const OrphanBlock& orphan) {
  state.orphans.back() = orphan;
  state.orphans.emplace_back();
  ++state.orphanBlockCount;
}

/// A sub-node block of the size that its count asks for, with the attachment table in its first entry.
bool IsAttachmentSubNode(const PageLayout& layout, const Head& head, std::uint32_t size) {
  const ByteView bytes(head);
  const std::uint32_t width = layout.Pitch();
  return bytes.U32(width) == kAttachmentTable && static_cast<std::uint16_t>((3u * bytes.U16(2) + 1u) * width) == size;
}

void TryToDetectEncoding(EngineState& state, SourceWindow& window, const BlockRecord& block) {
  const std::uint64_t dataEnd = (std::uint64_t{block.size} + 15) / 16 * 16;
  const ByteView tail = window.Peek(block.offset + dataEnd, block.size + kTrailerReach - dataEnd);
  if (!HasBlockTrailer(state.layout, block.offset, tail)) return;
  if (BlockReader(state).DetectEncoding(block.bid, block.offset, block.size)) state.encodingUnknown = false;
}

}  // namespace

bool ClassifyBlock(EngineState& state, SourceWindow& window, const BlockRecord& block) {
  if (block.offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
  Head head{};
  const auto bytes = window.Peek(block.offset, head.size()).Bytes();
  std::copy(bytes.begin(), bytes.end(), head.begin());

  const bool referenced = state.referencedIds.IsReferencedId(block.bid);
  if (!referenced && IsAttachmentSubNode(state.layout, head, block.size)) {
    ListOrphan(state, {.bidData = 0, .bidSub = block.bid});
    return true;
  }
  if (state.encodingUnknown) TryToDetectEncoding(state, window, block);
  const BlockReader reader(state);
  reader.DecodeBlock(block.bid, std::span(head).first(std::min<std::size_t>(block.size, head.size())));
  if (!reader.AcceptsSignature(ByteView(head).U16(2), false)) return false;
  if (state.encodingUnknown || referenced) return false;
  ListOrphan(state, {.bidData = block.bid, .bidSub = 0});
  return true;
}

}  // namespace velmora::engine
