#include "engine/steps.h"

#include <utility>

#include "engine/block_reader.h"
#include "engine/near_bytes.h"

namespace velmora::engine {
namespace {

/// Goes through the nodes that may be folders, in the order of the list, up to the first whose block is a heap in one
/// of the encodings.
void FindEncoding(ScannedStore& found, RunContext& run) {
  const BlockReader blocks(found);
  const auto& nodes = found.nodes.Records();
  for (std::size_t& i = found.encodingFoundAt; i < nodes.size() && !run.runEnded; ++i) {
    run.control.PausePoint();
    if (!nodes[i].MayBeFolder()) continue;
    const auto block = blocks.FindBlockOrLower(LowBid(nodes[i].bidData));
    const auto encoding = block ? DetectEncoding(found.source, found.storeKind, *block) : std::nullopt;
    if (!encoding) continue;
    found.blockEncoding = *encoding;
    return;
  }
}

}  // namespace

void OpenSource(StoreScan& scan, RunContext& run, const std::filesystem::path& path,
                const platform::SourceOpener& open) {
  scan = StoreScan{};
  run.BeginStage(1);
  auto source = open(path);
  if (!source) {
    run.Say(Notice{NoticeKind::kSourceNotOpened, {}, source.error()});
    throw WorkerEnded{};
  }
  scan.percentBase = (*source)->Size() / 100;
  scan.found->source.Open(std::make_shared<NearBytes>(std::move(*source), *run.workers));
}

std::unique_ptr<const ScannedStore> FinishScan(StoreScan& scan, RunContext& run) {
  if (scan.encodingUnknown && !run.runEnded && !run.runAborted) FindEncoding(*scan.found, run);
  return std::move(scan.found);
}

}  // namespace velmora::engine
