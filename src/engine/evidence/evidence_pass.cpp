#include "engine/evidence/evidence_pass.h"

#include <algorithm>
#include <deque>
#include <ranges>

#include "engine/evidence/step_look.h"
#include "engine/evidence/stretch.h"
#include "engine/pieces_ahead.h"
#include "store/format/checksum.h"

namespace velmora::engine {
namespace {

constexpr std::uint64_t kClearLead = 16;  ///< things found, by which one layout is told from others

/// Gathers what the steps show of one layout, in the order of the source.
class Gatherer {
 public:
  Gatherer(const Generation& layout, std::uint64_t fileSize) : finds_(layout, fileSize) {}

  /// What ends in the step that ends at `end`; `stretch` are its bytes.
  void Take(const StepSights& step, const Stretch& stretch, std::uint64_t end) {
    if (seeksMoved_) {
      for (MaybeMoved candidate : step.maybeMoved) {
        candidate.usedUpToIt += finds_.usedSlots;
        maybeMoved_.push_back(candidate);
      }
    }
    finds_.Add(step.sights);
    SettleMoved(stretch, end);
  }

  /// `stretch` is that of the last step.
  Finds Finish(const Stretch& stretch) {
    SettleMoved(stretch, UINT64_MAX);
    return std::move(finds_);
  }

  /// Moved blocks are sought only in the layout that the source seems to have.
  void SeekMoved(bool isLikely) {
    seeksMoved_ = isLikely;
    if (!isLikely) finds_.soughtMoved = false;
  }

  std::uint64_t Count() const { return finds_.Count(); }

 private:
  /// Those over which no block that stands in its place can end any more.
  void SettleMoved(const Stretch& stretch, std::uint64_t end) {
    SumAllowance allowance(stretch.bytes.size());
    while (!maybeMoved_.empty() && end - maybeMoved_.front().end >= kLargestBlock) {
      const auto [seen, itsEnd, used] = maybeMoved_.front();
      maybeMoved_.pop_front();
      if (!finds_.taken.IsFree(seen.start, itsEnd - seen.start)) continue;
      const auto stored = allowance.Stored(stretch, seen, itsEnd);
      if (!stored.empty() && seen.trailer.dwCRC == WeakCrc(stored)) {
        finds_.TakeWhole(seen, seen.start, Grade::kMoved, stored, used);
      }
    }
  }

  Finds finds_;
  bool seeksMoved_ = true;
  std::deque<MaybeMoved> maybeMoved_;
};

Stretch StretchOf(const Piece& piece) { return {piece.base, piece.bytes.Bytes()}; }

}  // namespace

void Finds::TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored,
                      std::uint64_t usedUpToIt) {
  Sights::TakeWhole(seen, offset, grade, stored, usedUpToIt);
  Mark(whole.back());
}

void Finds::Add(const Sights& behind) {
  Sights::Add(behind);
  for (const FoundPage& page : behind.pages) Mark(page);
  for (const FoundBlock& block : behind.whole) Mark(block);
  if (whole.size() >= BlockSorter::kPiece) sorted.Take(whole);
}

std::vector<Finds> LookThrough(const Source& source, std::span<const Generation* const> layouts, RunContext& run) {
  std::vector<Gatherer> gatherers;
  gatherers.reserve(layouts.size());
  for (const Generation* layout : layouts) gatherers.emplace_back(*layout, source.Size());
  const auto finish = [&](const Stretch& last) {
    std::vector<Finds> finds;
    for (Gatherer& gatherer : gatherers) finds.push_back(gatherer.Finish(last));
    return finds;
  };

  const auto look = [&](const Piece& piece) {
    std::vector<StepSights> shown;
    for (const Generation* layout : layouts) {
      shown.push_back(LookAtStep(StretchOf(piece), piece.begin, piece.end, *layout));
    }
    return shown;
  };
  const PieceCut cut{.first = source.Begin() / kStep * kStep, .size = kStep, .lead = kReachOfPass};
  for (PiecesAhead<std::vector<StepSights>> steps(source, cut, look, *run.workers); !steps.IsEmpty(); steps.Pop()) {
    const Piece& step = steps.Front();
    run.control.PausePoint();
    run.SayProgress(step.begin * 100 / source.Size(), Phase::kProbe);
    steps.Await();
    for (std::size_t i = 0; i < gatherers.size(); ++i) {
      gatherers[i].Take(steps.FrontShown()[i], StretchOf(step), step.end);
    }
    const std::uint64_t most = std::ranges::max(gatherers | std::views::transform(&Gatherer::Count));
    for (Gatherer& gatherer : gatherers) gatherer.SeekMoved(gatherer.Count() + kClearLead >= most);
    if (step.end == source.Size()) return finish(StretchOf(step));
  }
  return finish({});
}

}  // namespace velmora::engine
