#include <algorithm>
#include <optional>

#include "engine/evidence/evidence_pass.h"
#include "engine/evidence/page_evidence.h"
#include "engine/evidence/stretch.h"
#include "engine/source_window.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kMostLostAtOnce = 256;

/// Bytes without any finding, by which this is given up: no block is as long, and what is lost ahead of the next one
/// may be more than is sought.
constexpr std::uint64_t kMostInVain = 64ull << 20;

/// Looks for what was written at `written` and ends `lost` bytes ahead of it.
class ShiftedSeeker {
 public:
  ShiftedSeeker(const Source& source, Finds& finds)
      : source_(source), window_(source), layout_(*finds.layout), finds_(finds) {}

  void Run(std::uint64_t from, RunContext& run) {
    const std::uint64_t size = source_.Size();
    std::uint64_t written = from / layout_.slotSize * layout_.slotSize + layout_.slotSize;
    for (; written - lost_ <= size && written - lost_ < std::max(from, finds_.end) + kMostInVain;
         written += layout_.slotSize) {
      const std::uint64_t nearest = written - lost_;
      if (nearest > Loaded()) {
        run.control.PausePoint();
        stretch_.base = nearest - std::min(nearest, kReachOfPass);
        stretch_.bytes = window_.Read(stretch_.base, nearest - stretch_.base + kStep).Bytes();
      }
      Seek(written, nearest);
    }
  }

 private:
  std::uint64_t Loaded() const { return stretch_.base + stretch_.bytes.size(); }

  /// What was written to end at `written`, at `nearest` or a little ahead of it.
  void Seek(std::uint64_t written, std::uint64_t nearest) {
    const std::uint64_t size = layout_.blockTrailerSize;
    if (nearest < size) return;
    const std::uint64_t most = std::min(kMostLostAtOnce, nearest - size);
    const auto tails = stretch_.Ending(nearest, most + size);
    if (tails.empty()) return;
    for (std::uint64_t more = 0; more <= most; ++more) {
      const auto tail = tails.subspan(most - more, size);
      // Four places for each byte of the source are looked at, so the cheapest test is made apart.
      if (layout_.LoadWord(tail, layout_.offBlockId) >= kBidLimit) continue;
      if (IsBlockThere(tail, written, nearest - more)) return Shift(more);
    }
    for (std::uint64_t more = 0; written % kSector == 0 && more <= most; ++more) {
      if (IsPageThere(written, nearest - more)) return Shift(more);
    }
  }

  void Shift(std::uint64_t more) {
    if (more != 0) finds_.shifts.push_back({start_, lost_ += more});
  }

  bool IsBlockThere(std::span<const std::byte> tail, std::uint64_t written, std::uint64_t end) {
    const std::optional<SeenTrailer> seen = SeeTrailer(tail, written, layout_);
    if (!seen || !seen->isSigned || seen->trailer.dwCRC == 0) return false;
    const auto place = stretch_.Ending(end, written - seen->start);
    if (place.empty() || seen->trailer.cb > mostSummed_) return false;
    mostSummed_ -= seen->trailer.cb;
    const auto stored = place.first(seen->trailer.cb);
    if (seen->trailer.dwCRC != WeakCrc(stored)) return false;
    start_ = seen->start;
    const std::uint64_t offset = end - place.size();
    finds_.TakeWhole(*seen, offset, offset == start_ ? Grade::kProven : Grade::kMoved, stored, finds_.usedSlots);
    return true;
  }

  bool IsPageThere(std::uint64_t written, std::uint64_t end) {
    const auto bytes = stretch_.Ending(end, layout_.pageSize);
    if (bytes.empty() || written < bytes.size()) return false;
    auto page = GradePage(bytes, written - bytes.size(), layout_);
    if (!page || page->grade != Grade::kProven) return false;
    start_ = page->offset;
    page->offset = end - bytes.size();
    if (page->offset != start_) page->grade = Grade::kMoved;
    finds_.TakePage(*page);
    return true;
  }

  const Source& source_;
  SourceWindow window_;
  Stretch stretch_;
  const Generation& layout_;
  Finds& finds_;
  std::uint64_t mostSummed_ = source_.Size() * kTimesSummed;
  std::uint64_t lost_ = 0;
  std::uint64_t start_ = 0;  ///< where what was found last was written
};

}  // namespace

void LookForShifted(const Source& source, std::uint64_t from, Finds& finds, RunContext& run) {
  ShiftedSeeker(source, finds).Run(from, run);
}

}  // namespace velmora::engine
