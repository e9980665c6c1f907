#include <algorithm>

#include "engine/block_steps.h"
#include "engine/page_walk.h"
#include "engine/pieces_ahead.h"
#include "engine/steps.h"
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

/// The bytes that a page is seen with: an entry may reach from it into what is read with it.
std::uint32_t ReadSize(const Generation& layout) { return layout.formatId == FORMAT_UNICODE_4K ? 65536 : 4096; }

/// What a piece of the source shows.
struct PieceShown {
  std::vector<NodeRecord> nodes;  ///< of its node pages, in their order
  StepMarks blockSteps;           ///< Normal Scan only
};

PieceShown LookAtPiece(const Generation& layout, const Piece& piece, bool forBlocks) {
  PieceShown shown;
  const std::uint32_t read = ReadSize(layout);
  for (std::uint64_t readOffset = piece.begin; readOffset < piece.end; readOffset += read) {
    const ByteView bytes = piece.bytes.Slice(readOffset - piece.base, read);
    for (std::uint32_t p = 0; p < read; p += StrideOf(layout)) {
      const ByteView page = bytes.Slice(p, read);
      if (IsNodePage(layout, readOffset + p, page)) ReadNodePage(layout, page, shown.nodes);
    }
  }
  for (std::uint64_t offset = piece.begin; forBlocks && offset < piece.end; offset += kBlockScanStep) {
    shown.blockSteps.push_back(MayShowBlocks(layout, piece, offset));
  }
  return shown;
}

/// All of the source; ends early once `runEnded` is raised.
void ReadPieces(StoreScan& scan, RunContext& run) {
  ScannedStore& found = *scan.found;
  const std::uint32_t read = ReadSize(found.layout);
  const auto look = [&layout = found.layout, forBlocks = !run.smartScan](const Piece& piece) {
    return LookAtPiece(layout, piece, forBlocks);
  };
  const PieceCut cut{.first = FirstPage(found.layout), .size = SourceWindow::kWindowBytes, .lead = kLeadOfBlockStep};
  for (PiecesAhead<PieceShown> pieces(found.source, cut, look, *run.workers); !pieces.IsEmpty() && !run.runEnded;
       pieces.Pop()) {
    run.control.PausePoint();
    pieces.Await();
    const PieceShown& shown = pieces.FrontShown();
    for (const NodeRecord& node : shown.nodes) found.nodes.Insert(node);
    scan.blockSteps.insert(scan.blockSteps.end(), shown.blockSteps.begin(), shown.blockSteps.end());
    for (std::uint64_t offset = pieces.Front().begin; offset < pieces.Front().end; offset += read) {
      run.SayProgress(scan.PercentOfSource(offset + read), Phase::kNodeScan);
    }
  }
}

}  // namespace

void ScanNodePages(StoreScan& scan, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(4);

  ScannedStore& found = *scan.found;
  found.nodes = {};
  scan.blockSteps.clear();
  ReadPieces(scan, run);
  if (run.runEnded) return;

  // What could not be read may be readable when the blocks are looked for.
  if (!found.source.Unread().Ranges().empty()) scan.blockSteps.clear();
  found.nodes.Settle();
  if (run.smartScan) {
    scan.referencedIds.Build(found.nodes);
    found.orphans.assign(1, OrphanBlock{});
  }
  run.Log(u"\r\n\r\n-------------Scanning source file----------------");
  run.Log(u"\r\nCollecting NBT Entries");
  found.nodeCount = static_cast<std::uint32_t>(found.nodes.Records().size()) + 1;
}

}  // namespace velmora::engine
