#include <utility>

#include "engine/steps.h"

namespace velmora::engine {

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
  scan.found->source.Open(std::move(*source));
}

}  // namespace velmora::engine
