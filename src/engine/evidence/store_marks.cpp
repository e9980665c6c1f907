#include "engine/evidence/store_marks.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>

#include "engine/evidence/block_evidence.h"
#include "engine/evidence/page_evidence.h"
#include "engine/evidence/stretch.h"
#include "engine/source_window.h"
#include "store/format/header.h"

namespace velmora::engine {
namespace {

constexpr std::array<const Generation*, 3> kLayouts = {&generations::kUnicode, &generations::kAnsi,
                                                       &generations::kUnicode4k};
constexpr std::string_view kMagic = "!BDN";
constexpr std::uint64_t kLargestTrailer = generations::kUnicode4k.blockTrailerSize;
constexpr std::uint64_t kSmallestTrailer = generations::kAnsi.blockTrailerSize;

/// Marks are told apart by so many stretches of the file: beyond that only one of each stretch is kept.
constexpr std::uint64_t kMostMarks = std::uint64_t{1} << 19;

/// Headers that look like one are read as long as there are not more than this, and one in so many bytes.
constexpr std::uint64_t kHeadersAnyway = 1024;
constexpr std::uint64_t kBytesAHeader = std::uint64_t{64} << 10;

/// Ways in which the units of stores lie in the file that are followed: each takes a look at all of it.
constexpr std::size_t kMostAlignments = 4;

/// Blocks by which it is told how units lie where there are no pages, and the ids that these may have: without a place
/// to look at each byte may be the end of one, and with wider ids far too many seem to be.
constexpr std::uint64_t kTellingBlocks = 4;
constexpr std::uint64_t kLikelyBid = std::uint64_t{1} << 26;

class MarkSeeker {
 public:
  MarkSeeker(const Source& source, RunContext& run) : source_(source), run_(run), size_(source.Size()) {}

  std::vector<Mark> Find() {
    Sweep([this](const Stretch& stretch, std::uint64_t begin, std::uint64_t stop) {
      LookForHeaders(stretch, begin, stop);
      LookForPages(stretch, begin, stop);
      return true;
    });
    std::set<Alignment> alignments = AlignmentsOfPages();
    if (alignments.empty()) alignments = AlignmentOfBlocks();
    Sweep([&](const Stretch& stretch, std::uint64_t begin, std::uint64_t stop) {
      for (const auto& [format, rest] : alignments) LookForBlocks(stretch, begin, stop, LayoutOf(format), rest);
      return true;
    });
    std::ranges::sort(marks_);
    marks_.erase(std::ranges::unique(marks_).begin(), marks_.end());
    return std::move(marks_);
  }

 private:
  /// A layout, and what is left of the ends of its units when they are divided by their size.
  using Alignment = std::pair<FormatId, std::uint64_t>;

  /// Calls `look` for each step of the file until it returns false.
  template <class Look>
  void Sweep(const Look& look) {
    SourceWindow window(source_);
    Stretch stretch;
    mostSummed_ = size_ * kTimesSummed;
    for (std::uint64_t begin = 0; begin < size_; begin += kStep) {
      run_.control.PausePoint();
      stretch.base = begin - std::min(begin, kReachOfPass);
      stretch.bytes = window.Read(stretch.base, begin - stretch.base + kStep).Bytes();
      if (!look(stretch, begin, std::min(begin + kStep, size_))) return;
    }
  }

  /// Takes a mark, unless one that lies in the same way stands as near to it.
  void Take(const Mark& mark) {
    const Alignment alignment{mark.format, mark.place % LayoutOf(mark.format).slotSize};
    if (const std::uint64_t apart = size_ / kMostMarks; mark.kind != MarkKind::kHeader) {
      std::uint64_t& next = nextPlace_[alignment];
      if (mark.place < next && next - mark.place <= apart) return;
      next = mark.place + apart;
    }
    marks_.push_back(mark);
  }

  bool MaySum(std::uint64_t bytes) {
    if (bytes > mostSummed_) return false;
    mostSummed_ -= bytes;
    return true;
  }

  /// Those that end behind `begin` and not behind `stop`.
  void LookForHeaders(const Stretch& stretch, std::uint64_t begin, std::uint64_t stop) {
    const std::string_view letters(reinterpret_cast<const char*>(stretch.bytes.data()), stretch.bytes.size());
    std::uint64_t at = begin - std::min<std::uint64_t>(begin, Header::kSize - 1) - stretch.base;
    while ((at = letters.find(kMagic, at)) != std::string_view::npos) {
      const std::uint64_t place = stretch.base + at++;
      if (place + Header::kSize > stop) return;
      const auto bytes = stretch.Ending(place + Header::kSize, Header::kSize).first<Header::kSize>();
      if (headersRead_ >= kHeadersAnyway + size_ / kBytesAHeader) return;
      ++headersRead_;
      const auto header = IfReadable([&] { return DecodeHeader(bytes); });
      if (!header) continue;
      Take({.place = place,
            .id = header->root.ibFileEof,
            .size = Header::kSize,
            .kind = MarkKind::kHeader,
            .format = header->generation->formatId});
    }
  }

  /// Pages by the word that their trailers begin with.
  void LookForPages(const Stretch& stretch, std::uint64_t begin, std::uint64_t stop) {
    const std::uint64_t first = begin - std::min(begin, kLargestTrailer) - stretch.base;
    const std::uint64_t end = stop - stretch.base;
    for (std::uint64_t at = first; at + kSmallestTrailer <= end; ++at) {
      const auto type = std::to_integer<std::uint8_t>(stretch.bytes[at]);
      if (stretch.bytes[at + 1] != stretch.bytes[at] || type < 0x80 || type > 0x85) continue;
      for (const Generation* layout : kLayouts) {
        const std::uint64_t behind = stretch.base + at + layout->pageSize - layout->offPageType;
        const auto page = stretch.Ending(behind, layout->pageSize);
        if (!page.empty()) LookAtPage(page, behind - layout->pageSize, static_cast<PageType>(type), *layout);
      }
    }
  }

  void LookAtPage(PageView page, std::uint64_t place, PageType type, const Generation& layout) {
    const Mark mark{.place = place,
                    .id = layout.LoadWord(page, layout.offPageId),
                    .size = layout.pageSize,
                    .crc = Load<std::uint32_t>(page, layout.offPageCrc),
                    .sig = Load<std::uint16_t>(page, layout.offPageSig),
                    .kind = IsMap(type) ? MarkKind::kMap : MarkKind::kPage,
                    .format = layout.formatId};
    if (IsMap(type) ? mark.sig != 0 || mark.id == 0 || mark.id % kSector != 0 : !SoundHead(page, type, layout)) return;
    if (!MaySum(layout.offPageType) || mark.crc != WeakCrc(page.first(layout.offPageType))) return;
    if (mark.crc == 0) return;  // any zeros have that
    ++pagesAt_[{layout.formatId, place % layout.slotSize}];
    Take(mark);
  }

  std::set<Alignment> AlignmentsOfPages() const {
    std::vector<std::pair<std::uint64_t, Alignment>> byCount;
    for (const auto& [alignment, count] : pagesAt_) byCount.emplace_back(count, alignment);
    std::ranges::sort(byCount, std::greater());
    std::set<Alignment> most;
    for (std::size_t i = 0; i < std::min(byCount.size(), kMostAlignments); ++i) most.insert(byCount[i].second);
    for (const Mark& mark : marks_) {
      if (mark.kind != MarkKind::kHeader || most.size() >= 2 * kMostAlignments) continue;
      most.insert({mark.format, mark.place % LayoutOf(mark.format).slotSize});
    }
    return most;
  }

  /// The one in which the first blocks of the file lie.
  std::set<Alignment> AlignmentOfBlocks() {
    std::map<Alignment, std::uint64_t> seen;
    std::set<Alignment> found;
    Sweep([&](const Stretch& stretch, std::uint64_t begin, std::uint64_t stop) {
      for (std::uint64_t end = begin + 1; end <= stop; ++end) {
        for (const Generation* layout : kLayouts) {
          if (!BlockThatEnds(stretch, end, *layout, kLikelyBid)) continue;
          const Alignment alignment{layout->formatId, end % layout->slotSize};
          if (++seen[alignment] < kTellingBlocks) continue;
          found.insert(alignment);
          return false;
        }
      }
      return true;
    });
    return found;
  }

  void LookForBlocks(const Stretch& stretch, std::uint64_t begin, std::uint64_t stop, const Generation& layout,
                     std::uint64_t rest) {
    std::uint64_t end = begin / layout.slotSize * layout.slotSize + rest;
    if (end <= begin) end += layout.slotSize;
    for (; end <= stop; end += layout.slotSize) {
      if (const auto mark = BlockThatEnds(stretch, end, layout, kBidLimit)) Take(*mark);
    }
  }

  std::optional<Mark> BlockThatEnds(const Stretch& stretch, std::uint64_t end, const Generation& layout,
                                    std::uint64_t bidLimit) {
    const auto tail = stretch.Ending(end, layout.blockTrailerSize);
    if (tail.empty()) return std::nullopt;
    const std::optional<SeenTrailer> seen = SeeTrailer(tail, end, layout);
    if (!seen || seen->trailer.dwCRC == 0 || Value(seen->trailer.bid) >= bidLimit) return std::nullopt;
    const auto place = stretch.Ending(end, end - seen->start);
    if (place.empty() || !MaySum(seen->trailer.cb)) return std::nullopt;
    if (seen->trailer.dwCRC != WeakCrc(place.first(seen->trailer.cb))) return std::nullopt;
    return Mark{.place = seen->start,
                .id = Value(seen->trailer.bid),
                .size = static_cast<std::uint32_t>(place.size()),
                .crc = seen->trailer.dwCRC,
                .sig = Load<std::uint16_t>(tail, 2),
                .kind = MarkKind::kBlock,
                .format = layout.formatId};
  }

  const Source& source_;
  RunContext& run_;
  std::uint64_t size_;
  std::uint64_t mostSummed_ = 0;  ///< bytes, in this sweep
  std::uint64_t headersRead_ = 0;
  std::map<Alignment, std::uint64_t> nextPlace_;
  std::map<Alignment, std::uint64_t> pagesAt_;
  std::vector<Mark> marks_;
};

}  // namespace

std::uint32_t StepOf(const Mark& mark) {
  const Generation& layout = LayoutOf(mark.format);
  return mark.kind == MarkKind::kBlock ? layout.slotSize : static_cast<std::uint32_t>(kSector);
}

bool MayBeOf(const Mark& mark, Origin origin) {
  if (origin > 0 && mark.place < static_cast<std::uint64_t>(origin)) return false;
  const std::uint64_t offset = OffsetOf(mark, origin);
  switch (mark.kind) {
    case MarkKind::kHeader:
      return offset == 0;
    case MarkKind::kMap:
      return offset == mark.id;
    case MarkKind::kPage:
    case MarkKind::kBlock:
      break;
  }
  return offset % StepOf(mark) == 0 && ComputeSig(offset, mark.id) == mark.sig;
}

std::vector<Mark> FindMarks(const Source& source, RunContext& run) { return MarkSeeker(source, run).Find(); }

}  // namespace velmora::engine
