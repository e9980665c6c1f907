#include "engine/block_collector.h"
#include "engine/page_walk.h"
#include "engine/steps.h"
#include "engine/trailer_scan.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kLeastRecords = 2;

constexpr std::uint32_t kScanStep = 4096;  ///< in every format

/// The window reaches this far from each step, so that what the trailer tests see lies in it.
constexpr std::uint32_t kReach = 16384;

/// A page of the block tree that proves itself. Its level is not looked at: the entries of upper levels
/// fail the tests of a block's place as a rule.
bool IsBlockPage(const Generation& layout, std::uint64_t offset, ByteView page) {
  if (page.U16(layout.offPageType) != TypeWord(PageType::kBbt)) return false;
  const std::uint8_t entrySize = page.U8(layout.offEntrySize);
  const std::uint8_t most = page.U8(layout.offEntryMax);
  return (entrySize == layout.nodeEntrySize || entrySize == layout.blockEntrySize) && most != 0 &&
         page.U8(layout.offEntryCount) <= most &&
         page.U16(layout.offPageSig) == ComputeSig(offset, page.U32(layout.offPageId));
}

/// Takes in the blocks that a page of the block tree lists; in all other pages, those whose trailers stand there.
class BlockPages : public PageVisitor {
 public:
  BlockPages(StoreScan& scan, RunContext& run, SourceWindow& window, IndexFile& file)
      : layout_(scan.found->layout),
        fileSize_(scan.found->source.Size()),
        collector_(scan, run, window, file),
        trailers_(layout_, fileSize_, window, collector_) {}

  void VisitPage(std::uint64_t offset, ByteView page, std::uint64_t readOffset) override {
    if (IsBlockPage(layout_, offset, page)) {
      ReadBlockPage(page, readOffset);
    } else {
      trailers_.ScanSlots(offset, StrideOf(layout_));
    }
  }

 private:
  /// Takes the entries up to the first that cannot be a block's place. The count may tell of more entries than fit, so
  /// they are read to the end of what was read with the page.
  void ReadBlockPage(ByteView page, std::uint64_t readOffset) {
    const std::uint32_t pitch = layout_.blockEntrySize;
    const std::uint32_t width = layout_.idWidth;
    const std::uint32_t end = page.U8(layout_.offEntryCount) * pitch;
    for (std::uint32_t i = 0; i < end; i += pitch) {
      const std::uint64_t id = page.Word(i, width);
      const std::uint64_t offset = page.Word(i + width, width);
      const std::uint16_t size = page.U16(i + 2 * width);
      if (id == 0 || offset == 0 || size > kMostBlockData || size == 0 || offset > fileSize_ || offset % 16 != 0)
        return;
      collector_.Keep({id, size, offset});
      if (collector_.IsSmart()) collector_.Propose({page.Word(layout_.offPageId, width), size, readOffset});
    }
  }

  const Generation& layout_;
  const std::uint64_t fileSize_;
  BlockCollector collector_;
  TrailerScan trailers_;
};

}  // namespace

void ScanBlockPages(StoreScan& scan, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(5);

  ScannedStore& found = *scan.found;
  found.blockRecordCount = 0;
  found.orphanBlockCount = 0;
  found.index = {};
  auto file = IndexFile::Create(scan.outputFolder, found.index);
  if (!file) return run.Abort({NoticeKind::kNoIndexFile, {}, file.error()});

  SourceWindow window(found.source);
  BlockPages pages(scan, run, window, *file);
  const std::uint32_t read = found.layout.formatId == FORMAT_UNICODE_4K ? 16384 : 4096;
  WalkPages(scan, run, window, {.read = read, .step = kScanStep, .reach = kReach}, Phase::kBlockScan, pages);
  if (run.runEnded) return;
  if (run.smartScan) scan.referencedIds.Clear();

  const auto records = file->Finish();
  if (!records) return run.Abort({NoticeKind::kNoIndexFile, {}, records.error()});
  found.index.Settle(found.source, found.layout, run);
  if (*records < kLeastRecords) run.Abort({NoticeKind::kNotValid, {}, {}});
  run.Log(u"\r\n");
  run.Log(u"Collecting BBT Entries");
}

}  // namespace velmora::engine
