#include <optional>

#include "engine/block_steps.h"
#include "engine/node_sights.h"
#include "engine/page_walk.h"
#include "engine/pieces_ahead.h"
#include "engine/source_window.h"
#include "engine/steps.h"
#include "store/format/header.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

using generations::kAnsi;
using generations::kUnicode;
using generations::kUnicode4k;

constexpr std::uint64_t kProbeStep = 4096;     ///< positions examined by one look
constexpr std::size_t kLook = 2 * kProbeStep;  ///< so that a 4K page's trailer lies in the buffer at every position
constexpr std::uint64_t kSmallPage = kAnsi.pageSize;
constexpr std::size_t kHeaderBytes = 528;  ///< that are looked at

/// Is this the word in which a page of one of the trees tells its type?
bool IsMarked(std::uint16_t word) { return word == TypeWord(PageType::kBbt) || word == TypeWord(PageType::kNbt); }

StoreKind KindOf(std::uint16_t clientMagic) {
  switch (clientMagic) {
    case kMagicClientPst:
      return StoreKind::kPst;
    case kMagicClientOst:
      return StoreKind::kOst;
    case kMagicClientPab:
      return StoreKind::kPab;
    default:
      return StoreKind::kNone;
  }
}

/// A trailer that proves itself by its signature. `page` begins at the page and reaches 4096 bytes beyond
/// the last position.
std::optional<FormatId> ProvenTrailer(std::uint64_t offset, ByteView page) {
  const bool marked4k = IsMarked(page.U16(kUnicode4k.offPageType));
  const bool markedUnicode = IsMarked(page.U16(kUnicode.offPageType));
  const bool markedAnsi = IsMarked(page.U16(kAnsi.offPageType));
  if (!markedUnicode && !markedAnsi) return std::nullopt;
  const Generation& layout = marked4k ? kUnicode4k : markedUnicode ? kUnicode : kAnsi;
  const std::uint16_t signature = page.U16(layout.offPageSig);
  const std::uint32_t id = page.U32(layout.offPageId);
  if (signature == 0 || signature != ComputeSig(offset, id)) return std::nullopt;
  if (markedAnsi) return FORMAT_ANSI;
  if (markedUnicode) return FORMAT_UNICODE;
  return FORMAT_UNICODE_4K;
}

/// The last 512 bytes of a 4K page, known by its counters alone.
bool LooksLike4kTail(ByteView page) {
  constexpr std::uint64_t kAhead = kUnicode4k.pageSize - kSmallPage;
  return page.U16(kUnicode4k.offEntryMax - kAhead) == MaxEntries(kUnicode4k.blockEntrySize, kUnicode4k) &&
         IsMarked(page.U16(kUnicode4k.offPageType - kAhead));
}

std::optional<FormatId> FormatOfWindow(std::uint64_t offset, ByteView bytes) {
  std::optional<FormatId> found;
  for (std::uint64_t p = 0; p < kProbeStep; p += kSmallPage) {
    const ByteView page = bytes.Slice(p, kLook);
    if (const auto proven = ProvenTrailer(offset + p, page)) return proven;
    if (LooksLike4kTail(page)) found = FORMAT_UNICODE_4K;
  }
  return found;
}

/// What a piece of the source tells.
struct PieceTells {
  std::optional<FormatId> format;
  std::uint64_t steps = 0;  ///< that tell nothing, ahead of the one that tells the format
  NodeSights nodes;         ///< in the likely layout
};

/// The last step of a piece reaches into the next, which has it in its lead.
PieceTells LookForFormat(const Piece& piece, std::uint64_t sourceSize) {
  PieceTells tells;
  const std::uint64_t end = piece.end == sourceSize ? sourceSize : piece.end - kProbeStep;
  for (std::uint64_t offset = piece.base; offset < end; offset += kProbeStep) {
    tells.format = FormatOfWindow(offset, piece.bytes.Slice(offset - piece.base, kLook));
    if (tells.format) break;
    ++tells.steps;
  }
  return tells;
}

/// The layout in which nodes are looked for meanwhile; null for that of 4K pages, of which the first stands elsewhere.
const Generation* LikelyLayout(ByteView header) {
  const Generation* named = GenerationOfVersion(header.U16(kWVer));
  if (named == nullptr) return &kUnicode;
  return named->pageSize == kSmallPage ? named : nullptr;
}
static_assert(FirstPage(kAnsi) == FirstPage(kUnicode) && kLeadOfBlockStep == kProbeStep);

/// By the first page that tells; ends early once `runEnded` is raised.
std::optional<FormatId> FormatOfPages(StoreScan& scan, RunContext& run, const Generation* likely) {
  const Source& source = scan.found->source;
  const PieceCut cut = CutForNodes(kUnicode);
  std::uint64_t offset = cut.first;
  const auto report = [&](std::uint64_t steps) {
    for (; steps > 0; --steps) run.SayProgress(scan.PercentOfSource(offset += kProbeStep), Phase::kProbe);
  };
  const auto look = [size = source.Size(), likely, forBlocks = !run.smartScan](const Piece& piece) {
    PieceTells tells = LookForFormat(piece, size);
    if (likely != nullptr) tells.nodes = LookForNodes(*likely, piece, forBlocks);
    return tells;
  };
  scan.seenByProbe = {};
  if (likely != nullptr) scan.seenByProbe.formatId = likely->formatId;
  for (PiecesAhead<PieceTells> pieces(source, cut, look, *run.workers); !pieces.IsEmpty(); pieces.Pop()) {
    if (run.runEnded) return std::nullopt;
    run.control.PausePoint();
    pieces.Await();
    const PieceTells& tells = pieces.FrontShown();
    report(tells.steps);
    ++scan.seenByProbe.pieces;
    scan.seenByProbe.sights.Add(tells.nodes);
    if (tells.format) return tells.format;
  }
  report(1);  // the step behind the end
  return std::nullopt;
}

/// The last resort: root offsets of the header that have the shape of a page's place.
std::optional<FormatId> FormatOfHeader(ByteView header) {
  const auto isPlace = [&](std::uint64_t at) { return header.U32(at) != 0 && header.U8(at) == 0; };
  for (const Generation& layout : {kAnsi, kUnicode}) {
    const HeaderPlaces& roots = PlacesInHeader(layout);  // of each the id, and the place behind it
    if (isPlace(roots.brefBbt + layout.idWidth) && isPlace(roots.brefNbt + layout.idWidth)) return layout.formatId;
  }
  return std::nullopt;
}

}  // namespace

ProbeResult ProbeFormat(StoreScan& scan, RunContext& run) {
  if (run.runEnded) return ProbeResult::kFound;
  run.BeginStage(2);

  ScannedStore& found = *scan.found;
  SourceWindow window(found.source);
  const ByteView header = window.ReadAnew(0, kHeaderBytes);
  found.storeKind = KindOf(header.U16(kWMagicClient));
  if (found.storeKind != StoreKind::kPst && found.storeKind != StoreKind::kOst) return ProbeResult::kRefused;

  auto format = FormatOfPages(scan, run, LikelyLayout(header));
  if (run.runEnded) return ProbeResult::kFound;
  if (!format) format = FormatOfHeader(header);
  if (!format) return ProbeResult::kRefused;
  run.Log(u"\r\n\r\n");
  run.Log(u"Validating the Pst File");
  found.layout = LayoutOf(*format);
  return ProbeResult::kFound;
}

}  // namespace velmora::engine
