#include "engine/page_walk.h"

namespace velmora::engine {
namespace {

bool IsWorthAVisit(const StepMarks& marks, std::size_t number) { return number >= marks.size() || marks[number]; }

/// Bytes of the steps from the first one on up to one that is not worth a visit, as far as a window reaches.
std::size_t BytesOfVisits(const StepMarks& marks, std::size_t first, std::uint32_t step) {
  const std::size_t most = SourceWindow::kWindowBytes / step;
  std::size_t steps = 1;
  while (steps < most && IsWorthAVisit(marks, first + steps)) ++steps;
  return steps * step;
}

}  // namespace

void WalkPages(const StoreScan& scan, RunContext& run, SourceWindow& window, const WalkSizes& sizes, Phase phase,
               const StepMarks& marks, PageVisitor& visitor) {
  const Generation& layout = scan.found->layout;
  const std::uint64_t end = scan.found->source.Size();
  std::uint64_t offset = FirstPage(layout);
  for (std::size_t number = 0; offset < end && !run.runEnded; ++number) {
    run.control.PausePoint();
    if (IsWorthAVisit(marks, number)) {
      const std::size_t atOnce = BytesOfVisits(marks, number, sizes.step);
      const ByteView bytes = window.Read(offset, sizes.reach, atOnce).Slice(0, sizes.read);
      for (std::uint32_t p = 0; p < sizes.step; p += StrideOf(layout)) {
        run.control.PausePoint();
        visitor.VisitPage(offset + p, bytes.Slice(p, sizes.read), offset);
      }
    }
    offset += sizes.step;
    run.SayProgress(scan.PercentOfSource(offset), phase);
  }
}

}  // namespace velmora::engine
