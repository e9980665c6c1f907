#include "engine/evidence/evidence_pass.h"

#include <algorithm>
#include <optional>
#include <ranges>

#include "engine/evidence/page_evidence.h"
#include "engine/evidence/stretch.h"
#include "engine/source_window.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kClearLead = 16;  ///< things found, by which one layout is told from others

/// Looks for pages and blocks of one layout.
class Seeker {
 public:
  Seeker(const Generation& layout, std::uint64_t fileSize, std::uint64_t& mostSummed)
      : finds_(layout, fileSize), layout_(layout), mostSummed_(mostSummed) {}

  /// What ends in the sector that ends at `end`.
  void Look(const Stretch& stretch, std::uint64_t end) {
    if (const auto page = stretch.Ending(end, layout_.pageSize); !page.empty()) {
      if (const auto found = GradePage(page, end - layout_.pageSize, layout_)) finds_.TakePage(*found);
    }
    for (std::uint64_t slot = end - kSector + layout_.slotSize; slot <= end; slot += layout_.slotSize) {
      LookForBlock(stretch, slot);
    }
    SettleMoved(stretch, end);
  }

  void Finish(const Stretch& stretch) { SettleMoved(stretch, UINT64_MAX); }

  /// Moved blocks are sought only in the layout that the source seems to have.
  void SeekMoved(bool isLikely) {
    seeksMoved_ = isLikely;
    if (!isLikely) finds_.soughtMoved = false;
  }

  std::uint64_t Count() const { return finds_.Count(); }
  Finds Take() { return std::move(finds_); }

 private:
  struct Candidate {
    SeenTrailer seen;
    std::uint64_t end;
  };

  void LookForBlock(const Stretch& stretch, std::uint64_t end) {
    const auto tail = stretch.Ending(end, layout_.blockTrailerSize);
    if (tail.empty()) return;
    if (Load<std::uint64_t>(tail, tail.size() - 8) != 0) ++finds_.usedSlots;
    const std::optional<SeenTrailer> seen = SeeTrailer(tail, end, layout_);
    if (!seen) return;
    if (!seen->isSigned) {
      if (seeksMoved_ && seen->trailer.dwCRC != 0) maybeMoved_.push_back({*seen, end});
      return;
    }
    const auto stored = Stored(stretch, *seen, end);
    if (stored.empty()) return;
    if (seen->trailer.dwCRC == WeakCrc(stored)) {
      finds_.TakeWhole(*seen, seen->start, Grade::kProven, stored);
    } else {
      finds_.TakeHurt(*seen, stored);
    }
  }

  /// The data of a block, if it may still be summed; none otherwise.
  std::span<const std::byte> Stored(const Stretch& stretch, const SeenTrailer& seen, std::uint64_t end) {
    const std::uint64_t cb = seen.trailer.cb;
    if (cb > mostSummed_) return {};
    mostSummed_ -= cb;
    return stretch.Ending(end, end - seen.start).first(cb);
  }

  /// Those over which no block that stands in its place can end any more.
  void SettleMoved(const Stretch& stretch, std::uint64_t end) {
    while (!maybeMoved_.empty() && end - maybeMoved_.front().end >= kLargestBlock) {
      const auto [seen, itsEnd] = maybeMoved_.front();
      maybeMoved_.pop_front();
      if (!finds_.taken.IsFree(seen.start, itsEnd - seen.start)) continue;
      const auto stored = Stored(stretch, seen, itsEnd);
      if (!stored.empty() && seen.trailer.dwCRC == WeakCrc(stored)) {
        finds_.TakeWhole(seen, seen.start, Grade::kMoved, stored);
      }
    }
  }

  Finds finds_;
  const Generation& layout_;
  std::uint64_t& mostSummed_;
  bool seeksMoved_ = true;
  std::deque<Candidate> maybeMoved_;
};

}  // namespace

std::vector<Finds> LookThrough(const Source& source, std::span<const Generation* const> layouts, RunContext& run) {
  const std::uint64_t size = source.Size();
  std::uint64_t mostSummed = size * kTimesSummed;
  std::vector<Seeker> seekers;
  seekers.reserve(layouts.size());
  for (const Generation* layout : layouts) seekers.emplace_back(*layout, size, mostSummed);

  SourceWindow window(source);
  Stretch stretch;
  for (std::uint64_t begin = source.Begin() / kStep * kStep; begin < size; begin += kStep) {
    run.control.PausePoint();
    run.SayProgress(begin * 100 / size, Phase::kProbe);
    stretch.base = begin - std::min(begin, kReachOfPass);
    stretch.bytes = window.Read(stretch.base, begin - stretch.base + kStep).Bytes();
    const std::uint64_t stop = std::min(begin + kStep, size);
    for (std::uint64_t end = begin + kSector; end < stop + kSector; end += kSector) {
      for (Seeker& seeker : seekers) seeker.Look(stretch, end);
    }
    const std::uint64_t most = std::ranges::max(seekers | std::views::transform(&Seeker::Count));
    for (Seeker& seeker : seekers) seeker.SeekMoved(seeker.Count() + kClearLead >= most);
  }
  std::vector<Finds> finds;
  for (Seeker& seeker : seekers) {
    seeker.Finish(stretch);
    finds.push_back(seeker.Take());
  }
  return finds;
}

}  // namespace velmora::engine
