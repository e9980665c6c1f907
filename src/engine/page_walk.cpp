#include "engine/page_walk.h"

namespace velmora::engine {

void WalkPages(const StoreScan& scan, RunContext& run, SourceWindow& window, const WalkSizes& sizes, Phase phase,
               PageVisitor& visitor) {
  const Generation& layout = scan.found->layout;
  std::uint64_t offset = FirstPage(layout);
  const auto read = [&] { return window.Read(offset, sizes.reach).Slice(0, sizes.read); };
  for (ByteView bytes = read(); !bytes.Empty() && !run.runEnded; bytes = read()) {
    for (std::uint32_t p = 0; p < sizes.step; p += StrideOf(layout)) {
      run.control.PausePoint();
      visitor.VisitPage(offset + p, bytes.Slice(p, sizes.read), offset);
    }
    offset += sizes.step;
    run.SayProgress(scan.PercentOfSource(offset), phase);
  }
}

}  // namespace velmora::engine
