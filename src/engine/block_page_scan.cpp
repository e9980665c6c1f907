#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <type_traits>

#include "engine/block_collector.h"
#include "engine/block_steps.h"
#include "engine/page_walk.h"
#include "engine/source_window.h"
#include "engine/steps.h"
#include "engine/zero_runs.h"
#include "store/format/checksum.h"
#include "store/format/little_endian.h"
#include "store/format/page.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kLeastRecords = 2;

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

constexpr std::size_t kSlot = 16;

/// Bytes read at a time where a run of zeros reaches back out of the window.
constexpr std::size_t kBackStep = 16384;

/// The first place at which a block of this size may begin whose last byte that is not 0 lies at `last`.
/// Wraps below the start of the file, as the signature does.
std::uint64_t FirstCandidate(std::uint64_t last, std::uint32_t size) { return (last - size + 15) & ~std::uint64_t{15}; }

/// What a slot says of the block before it.
struct Trailer {
  std::uint64_t id = 0;
  std::uint16_t size = 0;
  std::uint16_t signature = 0;
};

/// Reads a slot as if it were a trailer; false where size or id say that it is none. In the ANSI layout the trailer's
/// words stand where this looks; in the wide layouts it takes the halves of the id for size and signature, so there it
/// finds next to nothing.
template <std::size_t kIdWidth>
bool MayBeTrailer(std::span<const std::byte, kSlot> slot, Trailer& trailer) {
  using Id = std::conditional_t<kIdWidth == 4, std::uint32_t, std::uint64_t>;
  trailer = {.id = Load<Id>(slot, 8),
             .size = Load<std::uint16_t>(slot, kIdWidth),
             .signature = Load<std::uint16_t>(slot, kIdWidth + 2)};
  return trailer.size != 0 && trailer.size < kMostBlockData && static_cast<std::uint32_t>(trailer.id) != 0;
}

/// Of the trailer at `offset`, where `before` are the eight bytes ahead of it and not all of them 0: where the last
/// byte before it stands that is not 0.
std::uint64_t LastBefore(std::uint64_t offset, std::uint64_t before) {
  return offset - 1 - static_cast<std::uint64_t>(std::countl_zero(before)) / 8;
}

/// Each place at which the block may begin, for the trailer at `slot` and the last byte before it that is not 0, as far
/// as the signature says so: as often as zeros stand between them.
template <class Take>
void ForEachPlace(std::uint64_t slot, std::uint64_t last, const Trailer& trailer, Take take) {
  const std::uint64_t first = FirstCandidate(last, trailer.size);
  const std::uint64_t moves = 1 + slot - last;
  for (std::uint64_t k = 0; k <= moves / kSlot + 1; ++k) {
    const std::uint64_t candidate = first + k * kSlot;
    if (trailer.signature == ComputeSig(candidate, trailer.id)) take(candidate);
  }
}

/// Is there any, where the last byte that is not 0 is one of the eight ahead of the trailer?
bool FitsCloseTo(std::uint64_t last, const Trailer& trailer) {
  const std::uint64_t first = FirstCandidate(last, trailer.size);
  return trailer.signature == ComputeSig(first, trailer.id) ||
         trailer.signature == ComputeSig(first + kSlot, trailer.id);
}

/// Looks at every slot of 16 bytes as if it were a trailer.
class TrailerScan {
 public:
  /// All must outlive the object.
  TrailerScan(const Generation& layout, std::uint64_t fileSize, SourceWindow& window, BlockCollector& collector)
      : layout_(layout), fileSize_(fileSize), window_(window), collector_(collector) {}

  /// Scans the slots of `length` bytes at the offset, which the window holds as far as the file goes.
  void ScanSlots(std::uint64_t offset, std::uint32_t length);

 private:
  template <std::size_t kIdWidth>
  void ScanWindow(std::size_t begin, std::size_t end);

  /// Records each place at which the block may begin, for the trailer at `slot` and the last byte before it
  /// that is not 0.
  void RecoverFromTrailer(std::uint64_t slot, std::uint64_t last, const Trailer& trailer);

  /// The offset of the last byte before `end` that is not 0; nothing when the file begins with zeros up to
  /// there.
  std::optional<std::uint64_t> LastNonZeroBefore(std::uint64_t end);

  const Generation& layout_;
  const std::uint64_t fileSize_;
  SourceWindow& window_;
  BlockCollector& collector_;
};

void TrailerScan::ScanSlots(std::uint64_t offset, std::uint32_t length) {
  const std::size_t begin = offset - window_.Base();
  const std::size_t held = window_.Bytes().size();
  if (begin >= held) return;
  const std::size_t end = begin + std::min<std::size_t>(length, held - begin);
  if (layout_.idWidth == 4) {
    ScanWindow<4>(begin, end);
  } else {
    ScanWindow<8>(begin, end);
  }
}

// Every 16 bytes of the file come through here, so the common case is settled in place: in a wide store
// with encoded blocks nearly every slot holds a plausible size, hardly any a place that fits, and the byte
// before the slot is rarely 0.
template <std::size_t kIdWidth>
void TrailerScan::ScanWindow(std::size_t begin, std::size_t end) {
  const bool smart = collector_.IsSmart();
  const std::span<const std::byte> bytes = window_.Bytes();
  const std::uint64_t base = window_.Base();
  // `before` are the eight bytes ahead of the slot.
  const auto scanSlot = [&](std::size_t at, std::span<const std::byte, kSlot> slot, std::uint64_t before) {
    Trailer trailer;
    if (!MayBeTrailer<kIdWidth>(slot, trailer)) return;
    const std::uint64_t offset = base + at;
    if (before == 0) {
      if (const auto last = LastNonZeroBefore(offset)) RecoverFromTrailer(offset, *last, trailer);
      return;
    }
    const std::uint64_t last = LastBefore(offset, before);
    if (smart || FitsCloseTo(last, trailer)) RecoverFromTrailer(offset, last, trailer);
  };

  std::uint64_t before = begin >= 8 ? Load<std::uint64_t>(bytes, begin - 8) : 0;
  std::size_t at = begin;
  for (; end - at >= kSlot; at += kSlot) {
    const auto slot = bytes.subspan(at).first<kSlot>();
    scanSlot(at, slot, before);
    before = Load<std::uint64_t>(slot, 8);
  }
  if (at == end) return;
  std::array<std::byte, kSlot> partial{};
  std::ranges::copy(bytes.subspan(at, end - at), partial.begin());
  scanSlot(at, partial, before);
}

void TrailerScan::RecoverFromTrailer(std::uint64_t slot, std::uint64_t last, const Trailer& trailer) {
  ForEachPlace(slot, last, trailer, [&](std::uint64_t place) {
    if (place < fileSize_) {
      collector_.Keep({trailer.id, trailer.size, place});
    } else {
      collector_.KeepAgain();
    }
  });
  if (collector_.IsSmart()) collector_.Propose({trailer.id, trailer.size, FirstCandidate(last, trailer.size)});
}

std::optional<std::uint64_t> TrailerScan::LastNonZeroBefore(std::uint64_t end) {
  std::uint64_t rest = window_.Base();
  if (const auto found = LastNonZero(window_.Bytes(), end - rest)) return rest + *found;
  while (rest > 0) {
    const std::size_t step = std::min<std::uint64_t>(kBackStep, rest);
    rest -= step;
    const auto piece = window_.Peek(rest, step).Bytes();
    if (const auto found = LastNonZero(piece, piece.size())) return rest + *found;
  }
  return std::nullopt;
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

constexpr std::size_t kSlotsAtOnce = 32;
constexpr std::size_t kBytesAtOnce = kSlotsAtOnce * kSlot;

/// In the wide layouts the trailer tests take size and signature from the id, so the signature drops out of its own: a
/// place fits if its halves, one turned by the other, are the size. `size` has to be a sixteen-bit number.
constexpr std::uint32_t IsPlaceOf(std::uint32_t size, std::uint32_t place) {
  return static_cast<std::uint32_t>(((place ^ place >> 16) & 0xFFFF) == size);
}

/// May any of the slots at the offset be a trailer of a wide store that fits? Of those that it says no to, none is, as
/// long as the eight bytes ahead of the first are not all 0. The loops have no way out, so that compilers turn them
/// into vector instructions.
bool MayFit(std::span<const std::byte, kBytesAtOnce> slots, std::uint64_t offset) {
  std::array<std::uint32_t, kSlotsAtOnce> sizes;
  std::uint32_t any = 0;
  for (std::size_t i = 0; i < kSlotsAtOnce; ++i) {
    const auto id = Load<std::uint64_t>(slots, i * kSlot + 8);
    any |= static_cast<std::uint32_t>(id == 0);  // the places of the next slot are more
    sizes[i] = static_cast<std::uint16_t>(id);
  }
  for (std::size_t i = 0; i < kSlotsAtOnce; ++i) {
    // The last byte that is not 0 is one of eight, so the place is one of two, and this is the second or the first.
    const auto slot = static_cast<std::uint32_t>(offset + i * kSlot);
    const auto place = static_cast<std::uint32_t>(FirstCandidate(slot - 1, sizes[i]));
    any |= IsPlaceOf(sizes[i], place - 16u) | IsPlaceOf(sizes[i], place) | IsPlaceOf(sizes[i], place + 16u);
  }
  return any != 0;
}

/// Does any slot from `begin` to before `end` in the bytes of the piece tell of a block? Where zeros reach back out of
/// the piece, nobody knows.
template <std::size_t kIdWidth>
bool MayShowTrailer(const Piece& piece, std::uint64_t begin, std::uint64_t end) {
  const std::span<const std::byte> bytes = piece.bytes.Bytes();
  std::uint64_t before = begin >= 8 ? Load<std::uint64_t>(bytes, begin - 8) : 0;
  for (std::uint64_t at = begin; at < end; at += kSlot) {
    if (end - at < kSlot) return true;
    const auto slot = bytes.subspan(at).first<kSlot>();
    Trailer trailer;
    if (MayBeTrailer<kIdWidth>(slot, trailer)) {
      const std::uint64_t offset = piece.base + at;
      if (before != 0) {
        if (FitsCloseTo(LastBefore(offset, before), trailer)) return true;
      } else {
        const auto last = LastNonZero(bytes, at);
        bool fits = !last;
        if (last) ForEachPlace(offset, piece.base + *last, trailer, [&](std::uint64_t) { fits = true; });
        if (fits) return true;
      }
    }
    before = Load<std::uint64_t>(slot, 8);
  }
  return false;
}

}  // namespace

bool MayShowBlocks(const Generation& layout, const Piece& piece, std::uint64_t offset) {
  const std::span<const std::byte> bytes = piece.bytes.Bytes();
  const std::uint64_t begin = offset - piece.base;
  const std::uint64_t end = std::min<std::uint64_t>(begin + kBlockScanStep, bytes.size());
  for (std::uint64_t at = begin; at < end; at += StrideOf(layout)) {
    if (IsBlockPage(layout, piece.base + at, piece.bytes.Slice(at, StrideOf(layout)))) return true;
  }
  if (layout.idWidth == 4) return MayShowTrailer<4>(piece, begin, end);
  for (std::uint64_t at = begin; at < end; at += kBytesAtOnce) {
    const bool isKnown = end - at >= kBytesAtOnce && at >= 8 && Load<std::uint64_t>(bytes, at - 8) != 0;
    if (isKnown && !MayFit(bytes.subspan(at).first<kBytesAtOnce>(), piece.base + at)) continue;
    if (MayShowTrailer<8>(piece, at, std::min(at + kBytesAtOnce, end))) return true;
  }
  return false;
}

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
  WalkPages(scan, run, window, {.read = read, .step = kBlockScanStep, .reach = kReach}, Phase::kBlockScan,
            scan.blockSteps, pages);
  scan.blockSteps = StepMarks();  // with `{}` it would keep its memory
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
