#include <algorithm>
#include <utility>

#include "engine/node_sights.h"
#include "engine/page_walk.h"
#include "engine/pieces_ahead.h"
#include "engine/steps.h"

namespace velmora::engine {
namespace {

/// Takes what the pieces show, in their order, from one place of the source to another.
class NodeTaker {
 public:
  NodeTaker(StoreScan& scan, RunContext& run)
      : scan_(scan), run_(run), read_(ReadSizeOfNodes(scan.found->layout)), offset_(FirstPage(scan.found->layout)) {}

  /// `sights` are those of all that lies from the last end up to this one.
  void Take(const NodeSights& sights, std::uint64_t end) {
    for (const NodeRecord& node : sights.nodes) scan_.found->nodes.Insert(node);
    scan_.blockSteps.insert(scan_.blockSteps.end(), sights.blockSteps.begin(), sights.blockSteps.end());
    for (; offset_ < end; offset_ += read_) run_.SayProgress(scan_.PercentOfSource(offset_ + read_), Phase::kNodeScan);
  }

 private:
  StoreScan& scan_;
  RunContext& run_;
  const std::uint32_t read_;
  std::uint64_t offset_;
};

/// All of the source but what the search for the format has seen; ends early once `runEnded` is raised.
void ReadPieces(StoreScan& scan, RunContext& run) {
  const Source& source = scan.found->source;
  const Generation& layout = scan.found->layout;
  const auto look = [&layout, forBlocks = !run.smartScan](const Piece& piece) {
    return LookForNodes(layout, piece, forBlocks);
  };
  PieceCut cut = CutForNodes(layout);
  NodeTaker nodes(scan, run);
  if (const SeenByProbe seen = std::exchange(scan.seenByProbe, {}); seen.formatId == layout.formatId) {
    cut.passedOver = seen.pieces;
    nodes.Take(seen.sights, std::min(cut.first + seen.pieces * cut.size, source.Size()));
  }
  for (PiecesAhead<NodeSights> pieces(source, cut, look, *run.workers); !pieces.IsEmpty() && !run.runEnded;
       pieces.Pop()) {
    run.control.PausePoint();
    pieces.Await();
    nodes.Take(pieces.FrontShown(), pieces.Front().end);
  }
}

}  // namespace

void ScanNodePages(StoreScan& scan, RunContext& run) {
  if (run.runEnded || run.runAborted) return;
  run.BeginStage(4);

  ScannedStore& found = *scan.found;
  found.nodes = {};
  scan.blockSteps.clear();
  ReadPieces(scan, run);
  if (run.runEnded) return;

  // What could not be read may be readable when the blocks are looked for.
  if (!found.source.Unread().Ranges().empty()) scan.blockSteps.clear();
  found.nodes.Settle();
  if (run.smartScan) {
    scan.referencedIds.Build(found.nodes);
    found.orphans.assign(1, OrphanBlock{});
  }
  run.Log(u"\r\n\r\n-------------Scanning source file----------------");
  run.Log(u"\r\nCollecting NBT Entries");
  found.nodeCount = static_cast<std::uint32_t>(found.nodes.Records().size()) + 1;
}

}  // namespace velmora::engine
