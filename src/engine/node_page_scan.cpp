#include "engine/source_window.h"
#include "engine/steps.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

constexpr std::uint16_t kNodePage = 0x8181;
constexpr std::uint8_t kUpperEntrySize = 24;  ///< of the upper levels of Unicode and 4K trees
constexpr std::uint32_t kIdBound = 0xFFFFFF;

/// How the scan walks the file: where it begins, how much it takes at a time, how far pages are apart.
struct Walk {
  std::uint64_t start;
  std::uint32_t length;
  std::uint32_t stride;
};

Walk WalkOf(const PageLayout& layout) {
  if (layout.formatId == FORMAT_UNICODE_4K) return {147456, 65536, 4096};
  return {18432, 4096, 512};
}

/// A page with the exact entry size is taken even unproven; one of an upper level's size only if its
/// signature holds. Neither its level nor the number of its entries decides.
bool IsNodePage(const PageLayout& layout, std::uint64_t offset, ByteView page) {
  if (page.U16(layout.offPageType) != kNodePage) return false;
  const std::uint8_t entrySize = page.U8(layout.offEntrySize);
  if (entrySize == layout.nodeEntrySize) return true;
  return entrySize == kUpperEntrySize && page.U16(layout.offPageSig) == ComputeSig(offset, page.U32(layout.offPageId));
}

/// Does the page belong to an upper level of the tree? Both the level and the size of its entries have to
/// say so: either alone may be a damaged byte of a leaf. The level stands right behind the entry size.
bool IsUpperPage(const PageLayout& layout, ByteView page) {
  return page.U8(layout.offEntrySize) != layout.nodeEntrySize && page.U8(layout.offEntrySize + 1u) != 0;
}

/// Takes the entries up to the first without a node id. In the 4K format the area is no multiple of the
/// entry size, and its last entry reaches into the trailer.
void ReadNodePage(const PageLayout& layout, ByteView page, NodeList& nodes) {
  const std::uint32_t pitch = layout.Pitch();
  const bool upper = IsUpperPage(layout, page);
  for (std::uint32_t i = 0; i < layout.entryAreaEnd; i += 4 * pitch) {
    const NodeRecord node{page.U32(i), page.U32(i + pitch), page.U32(i + 2 * pitch), page.U32(i + 3 * pitch), upper};
    if (node.nid == 0) return;
    if (node.bidData < kIdBound && node.bidSub < kIdBound && node.nidParent < kIdBound) nodes.Insert(node);
  }
}

}  // namespace

void ScanNodePages(EngineState& state, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(4);

  const PageLayout& layout = state.layout;
  const Walk walk = WalkOf(layout);
  state.nodes.Clear();
  SourceWindow window(state);
  std::uint64_t offset = walk.start;
  for (ByteView bytes = window.Read(offset, walk.length); !bytes.Empty(); bytes = window.Read(offset, walk.length)) {
    for (std::uint32_t p = 0; p < bytes.Size(); p += walk.stride) {
      run.control.PausePoint();
      const ByteView page = bytes.Slice(p, layout.pageSize);
      if (IsNodePage(layout, offset + p, page)) ReadNodePage(layout, page, state.nodes);
    }
    offset += walk.length;
    run.SayProgress(state.PercentOfSource(offset), Phase::kNodeScan);
    if (run.runEnded) return;
  }

  state.nodes.Settle();
  if (run.smartScan) {
    state.referencedIds.Build(state.nodes);
    state.orphans.assign(1, OrphanBlock{});
  }
  run.Log(u"\r\n\r\n-------------Scanning source file----------------");
  run.Log(u"\r\nCollecting NBT Entries");
  state.nodeCount = static_cast<std::uint32_t>(state.nodes.Records().size()) + 1;
}

}  // namespace velmora::engine
