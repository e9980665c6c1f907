#include <optional>

#include "engine/source_window.h"
#include "engine/steps.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kFirstPage = 18432;
constexpr std::uint64_t kProbeStep = 4096;  ///< positions examined by one look
constexpr std::size_t kLook =
    2 * kProbeStep;  ///< read, so that a 4K page's trailer lies in the buffer at every position
constexpr std::uint64_t kSmallPage = 512;
constexpr std::uint16_t kMax4kEntries = 169;  ///< most entries of 24 bytes in a 4K page

bool IsMarked(std::uint16_t word) { return word == 0x8080 || word == 0x8181; }

StoreKind KindOf(std::uint16_t clientMagic) {
  switch (clientMagic) {
    case 0x4D53:
      return StoreKind::kPst;
    case 0x4F53:
      return StoreKind::kOst;
    case 0x4241:
      return StoreKind::kPab;
    default:
      return StoreKind::kNone;
  }
}

/// A trailer that proves itself by its signature. `page` begins at the page and reaches 4096 bytes beyond
/// the last position.
std::optional<FormatId> ProvenTrailer(std::uint64_t offset, ByteView page) {
  const bool marked4k = IsMarked(page.U16(4072));
  const bool markedUnicode = IsMarked(page.U16(496));
  const bool markedAnsi = IsMarked(page.U16(500));
  if (!markedUnicode && !markedAnsi) return std::nullopt;
  const std::uint16_t signature = page.U16(marked4k ? 4074 : markedUnicode ? 498 : 502);
  const std::uint32_t id = page.U32(marked4k ? 4080 : 504);
  if (signature == 0 || signature != ComputeSig(offset, id)) return std::nullopt;
  if (markedAnsi) return FORMAT_ANSI;
  if (markedUnicode) return FORMAT_UNICODE;
  return FORMAT_UNICODE_4K;
}

/// The last 512 bytes of a 4K page, known by its counters alone.
bool LooksLike4kTail(ByteView page) { return page.U16(474) == kMax4kEntries && IsMarked(page.U16(488)); }

std::optional<FormatId> FormatOfWindow(std::uint64_t offset, ByteView bytes) {
  std::optional<FormatId> found;
  for (std::uint64_t p = 0; p < kProbeStep; p += kSmallPage) {
    const ByteView page = bytes.Slice(p, kLook);
    if (const auto proven = ProvenTrailer(offset + p, page)) return proven;
    if (LooksLike4kTail(page)) found = FORMAT_UNICODE_4K;
  }
  return found;
}

/// The last resort: root offsets of the header that have the shape of a page's place.
std::optional<FormatId> FormatOfHeader(ByteView header) {
  const auto isPlace = [&](std::uint64_t at) { return header.U32(at) != 0 && header.U8(at) == 0; };
  if (isPlace(196) && isPlace(188)) return FORMAT_ANSI;
  if (isPlace(240) && isPlace(224)) return FORMAT_UNICODE;
  return std::nullopt;
}

}  // namespace

ProbeResult ProbeFormat(StoreScan& scan, RunContext& run) {
  if (run.runEnded) return ProbeResult::kFound;
  run.BeginStage(2);

  ScannedStore& found = *scan.found;
  SourceWindow window(found.source);
  found.storeKind = KindOf(window.Peek(0, 512).U16(8));
  if (found.storeKind != StoreKind::kPst && found.storeKind != StoreKind::kOst) return ProbeResult::kRefused;

  std::optional<FormatId> format;
  std::uint64_t offset = kFirstPage;
  for (bool more = true; more && !format;) {
    if (run.runEnded) return ProbeResult::kFound;
    run.control.PausePoint();
    const ByteView bytes = window.Read(offset, kLook);
    format = FormatOfWindow(offset, bytes);
    if (format) break;
    offset += kProbeStep;
    run.SayProgress(scan.PercentOfSource(offset), Phase::kProbe);
    more = !bytes.Empty();
  }

  if (!format) format = FormatOfHeader(window.Peek(0, 528));
  if (!format) return ProbeResult::kRefused;
  run.Log(u"\r\n\r\n");
  run.Log(u"Validating the Pst File");
  found.layout = LayoutOf(*format);
  return ProbeResult::kFound;
}

}  // namespace velmora::engine
