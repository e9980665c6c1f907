#include "engine/node_sights.h"

#include "engine/block_steps.h"
#include "store/format/checksum.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

/// Of the upper levels of wide trees; asked for in ANSI stores as well, whose own are smaller.
constexpr std::uint8_t kUpperEntrySize = generations::kUnicode.blockEntrySize;
constexpr std::uint32_t kIdBound = 0xFFFFFF;

/// A page with the exact entry size is taken even unproven; one of an upper level's size only if its
/// signature holds. Neither its level nor the number of its entries decides.
bool IsNodePage(const Generation& layout, std::uint64_t offset, ByteView page) {
  if (page.U16(layout.offPageType) != TypeWord(PageType::kNbt)) return false;
  const std::uint8_t entrySize = page.U8(layout.offEntrySize);
  if (entrySize == layout.nodeEntrySize) return true;
  return entrySize == kUpperEntrySize && page.U16(layout.offPageSig) == ComputeSig(offset, page.U32(layout.offPageId));
}

/// Does the page belong to an upper level of the tree? Both the level and the size of its entries have to
/// say so: either alone may be a damaged byte of a leaf. The level stands right behind the entry size.
bool IsUpperPage(const Generation& layout, ByteView page) {
  return page.U8(layout.offEntrySize) != layout.nodeEntrySize && page.U8(layout.offEntrySize + 1u) != 0;
}

/// Where the entries end by the rule of this scan: those that fit ahead of their count, but in the 4K format all up to
/// the trailer, so that the last one reaches into it.
std::uint32_t EntryAreaEnd(const Generation& layout) {
  if (layout.formatId == FORMAT_UNICODE_4K) return layout.offPageType;
  return std::uint32_t{MaxEntries(layout.nodeEntrySize, layout)} * layout.nodeEntrySize;
}

/// Takes the entries up to the first without a node id.
void ReadNodePage(const Generation& layout, ByteView page, std::vector<NodeRecord>& nodes) {
  const std::uint32_t width = layout.idWidth;
  const bool upper = IsUpperPage(layout, page);
  const std::uint32_t end = EntryAreaEnd(layout);
  for (std::uint32_t i = 0; i < end; i += layout.nodeEntrySize) {
    const NodeRecord node(page.U32(i), page.Word(i + width, width), page.Word(i + 2 * width, width),
                          page.U32(i + 3 * width), upper);
    if (node.nid == 0) return;
    const bool bounded = LowBid(node.bidData) < kIdBound && LowBid(node.bidSub) < kIdBound && node.nidParent < kIdBound;
    if (bounded) nodes.push_back(node);
  }
}

}  // namespace

PieceCut CutForNodes(const Generation& layout) {
  return {.first = FirstPage(layout), .size = SourceWindow::kWindowBytes, .lead = kLeadOfBlockStep};
}

NodeSights LookForNodes(const Generation& layout, const Piece& piece, bool forBlocks) {
  NodeSights sights;
  const std::uint32_t read = ReadSizeOfNodes(layout);
  for (std::uint64_t readOffset = piece.begin; readOffset < piece.end; readOffset += read) {
    const ByteView bytes = piece.bytes.Slice(readOffset - piece.base, read);
    for (std::uint32_t p = 0; p < read; p += StrideOf(layout)) {
      const ByteView page = bytes.Slice(p, read);
      if (IsNodePage(layout, readOffset + p, page)) ReadNodePage(layout, page, sights.nodes);
    }
  }
  for (std::uint64_t offset = piece.begin; forBlocks && offset < piece.end; offset += kBlockScanStep) {
    sights.blockSteps.push_back(MayShowBlocks(layout, piece, offset));
  }
  return sights;
}

}  // namespace velmora::engine
