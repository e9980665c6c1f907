#include "engine/block_collector.h"
#include "engine/steps.h"
#include "engine/trailer_scan.h"
#include "store/format/signature.h"

namespace velmora::engine {
namespace {

constexpr std::uint16_t kBlockPage = 0x8080;
constexpr std::uint32_t kMostEntrySize = 65512;  ///< one more than a trailer's slot may say
constexpr std::uint32_t kScanStep = 4096;        ///< the offset advances by this in every format
constexpr std::uint64_t kLeastRecords = 2;

/// The window reaches this far from each step, so that what the trailer tests see lies in it.
constexpr std::uint32_t kReach = 16384;

struct Walk {
  std::uint64_t start;
  std::uint32_t length;
  std::uint32_t stride;
};

Walk WalkOf(const PageLayout& layout) {
  if (layout.formatId == FORMAT_UNICODE_4K) return {147456, 16384, 4096};
  return {18432, 4096, 512};
}

/// A page of the block tree that proves itself. Its level is not looked at: the entries of upper levels
/// fail the tests of a block's place as a rule.
bool IsBlockPage(const PageLayout& layout, std::uint64_t offset, ByteView page) {
  if (page.U16(layout.offPageType) != kBlockPage) return false;
  const std::uint8_t entrySize = page.U8(layout.offEntrySize);
  const std::uint8_t most = page.U8(layout.offEntryMax);
  return (entrySize == layout.nodeEntrySize || entrySize == layout.blockEntrySize) && most != 0 &&
         page.U8(layout.offEntryCount) <= most &&
         page.U16(layout.offPageSig) == ComputeSig(offset, page.U32(layout.offPageId));
}

/// Takes the entries up to the first that cannot be a block's place. `page` reaches to the end of what was
/// read with it, since the count may tell of more entries than fit. `readOffset` is where that read began.
void ReadBlockPage(const PageLayout& layout, std::uint64_t fileSize, std::uint64_t readOffset, ByteView page,
                   BlockCollector& collector) {
  const std::uint32_t pitch = layout.formatId == FORMAT_ANSI ? 12 : 24;
  const std::uint32_t width = layout.idWidth;
  const std::uint32_t pageId = page.U32(layout.offPageId);
  const std::uint32_t end = page.U8(layout.offEntryCount) * pitch;
  for (std::uint32_t i = 0; i < end; i += pitch) {
    const std::uint64_t id = width == 4 ? page.U32(i) : page.U64(i);
    const std::uint64_t offset = width == 4 ? page.U32(i + width) : page.U64(i + width);
    const std::uint16_t size = page.U16(i + 2 * width);
    if (id == 0 || offset == 0 || size > kMostEntrySize || size == 0 || offset > fileSize || offset % 16 != 0) return;
    collector.Keep({static_cast<std::uint32_t>(id), size, offset});
    if (collector.IsSmart()) collector.Propose({pageId, size, readOffset});
  }
}

void ScanSource(EngineState& state, RunContext& run, IndexFile& file) {
  SourceWindow window(state);
  BlockCollector collector(state, run, window, file);
  TrailerScan trailers(state, window, collector);
  const Walk walk = WalkOf(state.layout);
  const std::uint64_t fileSize = state.source->Size();
  std::uint64_t offset = walk.start;
  const auto read = [&] { return window.Read(offset, kReach).Slice(0, walk.length); };
  for (ByteView bytes = read(); !bytes.Empty(); bytes = read()) {
    if (run.runEnded) return;
    for (std::uint32_t p = 0; p < kScanStep; p += walk.stride) {
      run.control.PausePoint();
      const ByteView page = bytes.Slice(p, walk.length);
      if (IsBlockPage(state.layout, offset + p, page)) {
        ReadBlockPage(state.layout, fileSize, offset, page, collector);
      } else {
        trailers.ScanSlots(offset + p, walk.stride);
      }
    }
    offset += kScanStep;
    run.SayProgress(state.PercentOfSource(offset), Phase::kBlockScan);
  }
}

}  // namespace

void ScanBlockPages(EngineState& state, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(5);

  state.blockRecordCount = 0;
  state.orphanBlockCount = 0;
  state.indexFileName = "FirstTableItem.dat";
  auto file = IndexFile::Create(state.outputFolder / state.indexFileName, state);
  if (!file) return run.Abort({NoticeKind::kNoIndexFile, {}, file.error()});

  ScanSource(state, run, *file);
  if (run.runEnded) return;
  if (run.smartScan) state.referencedIds.Clear();

  const auto records = file->Finish(run);
  if (!records) return run.Abort({NoticeKind::kNoIndexFile, {}, records.error()});
  if (*records < kLeastRecords) run.Abort({NoticeKind::kNotValid, {}, {}});
  run.Log(u"\r\n");
  run.Log(u"Collecting BBT Entries");
  state.percentBase = state.nodeCount / 100;
}

}  // namespace velmora::engine
