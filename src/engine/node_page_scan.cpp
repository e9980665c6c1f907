#include "engine/page_walk.h"
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

/// Keeps the entries of every node page.
class NodePages : public PageVisitor {
 public:
  explicit NodePages(ScannedStore& found) : layout_(found.layout), nodes_(found.nodes) {}

  void VisitPage(std::uint64_t offset, ByteView page, std::uint64_t) override {
    if (IsNodePage(layout_, offset, page)) ReadNodePage(page);
  }

 private:
  /// Takes the entries up to the first without a node id.
  void ReadNodePage(ByteView page) {
    const std::uint32_t width = layout_.idWidth;
    const bool upper = IsUpperPage(layout_, page);
    const std::uint32_t end = EntryAreaEnd(layout_);
    for (std::uint32_t i = 0; i < end; i += layout_.nodeEntrySize) {
      const NodeRecord node(page.U32(i), page.Word(i + width, width), page.Word(i + 2 * width, width),
                            page.U32(i + 3 * width), upper);
      if (node.nid == 0) return;
      const bool bounded =
          LowBid(node.bidData) < kIdBound && LowBid(node.bidSub) < kIdBound && node.nidParent < kIdBound;
      if (bounded) nodes_.Insert(node);
    }
  }

  const Generation& layout_;
  NodeList& nodes_;
};

}  // namespace

void ScanNodePages(StoreScan& scan, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(4);

  ScannedStore& found = *scan.found;
  const std::uint32_t read = found.layout.formatId == FORMAT_UNICODE_4K ? 65536 : 4096;
  found.nodes = {};
  SourceWindow window(found.source);
  NodePages pages(found);
  WalkPages(scan, run, window, {.read = read, .step = read, .reach = read}, Phase::kNodeScan, pages);
  if (run.runEnded) return;

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
