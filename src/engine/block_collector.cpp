#include "engine/block_collector.h"

#include <algorithm>
#include <array>
#include <limits>

#include "store/format/encoding.h"
#include "store/format/heap_format.h"
#include "store/format/store_nodes.h"

namespace velmora::engine {
namespace {

/// What the tests look at: the count, the first entry of a sub-node block, the signature of a heap.
using Head = std::array<std::byte, 12>;

void ListOrphan(ScannedStore& found, const OrphanBlock& orphan) {
  found.orphans.back() = orphan;
  found.orphans.emplace_back();
  ++found.orphanBlockCount;
}

/// A sub-node block of the size that its count asks for, with the attachment table in its first entry.
bool IsAttachmentSubNode(const Generation& layout, const Head& head, std::uint32_t size) {
  const ByteView bytes(head);
  const std::uint32_t asked = layout.subnodeHeadSize + bytes.U16(2) * layout.SubnodeEntrySize();
  return bytes.U32(layout.subnodeHeadSize) == Value(nid::kAttachmentTable) && static_cast<std::uint16_t>(asked) == size;
}

void TryToDetectEncoding(StoreScan& scan, SourceWindow& window, const PlacedBlock& block) {
  ScannedStore& found = *scan.found;
  const std::uint64_t dataEnd = (std::uint64_t{block.size} + 15) / 16 * 16;
  const ByteView tail = window.Peek(block.offset + dataEnd, block.size + kTrailerReach - dataEnd);
  if (!HasBlockTrailer(found.layout, block.offset, tail)) return;
  const auto encoding = DetectEncoding(found.source, found.storeKind, RecordOf(block));
  if (!encoding) return;
  found.blockEncoding = *encoding;
  scan.encodingUnknown = false;
}

}  // namespace

bool ClassifyBlock(StoreScan& scan, SourceWindow& window, const PlacedBlock& block) {
  if (block.offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return false;
  ScannedStore& found = *scan.found;
  Head head{};
  const auto bytes = window.Peek(block.offset, head.size()).Bytes();
  std::copy(bytes.begin(), bytes.end(), head.begin());

  const std::uint32_t id = LowBid(block.bid);
  const bool referenced = scan.referencedIds.IsReferencedId(id);
  if (!referenced && IsAttachmentSubNode(found.layout, head, block.size)) {
    ListOrphan(found, {.bidData = 0, .bidSub = id});
    return true;
  }
  if (scan.encodingUnknown) TryToDetectEncoding(scan, window, block);
  DecodeBlock(found.blockEncoding, block.bid, std::span(head).first(std::min<std::size_t>(block.size, head.size())));
  if (!AcceptsSignature(found.storeKind, ByteView(head).U16(kOffHeapWord), false)) return false;
  if (scan.encodingUnknown || referenced) return false;
  ListOrphan(found, {.bidData = id, .bidSub = 0});
  return true;
}

void BlockCollector::KeepAgain() {
  ++scan_.found->blockRecordCount;
  ClassifyAndRecord();
}

void BlockCollector::ClassifyAndRecord() {
  run_.control.PausePoint();
  if (smart_) ClassifyBlock(scan_, window_, atHand_);
  file_.Append(atHand_);
}

}  // namespace velmora::engine
