#include <utility>

#include "engine/messages.h"
#include "engine/steps.h"

namespace velmora::engine {

void OpenSource(StoreScan& scan, RunContext& run, const std::filesystem::path& path,
                const platform::SourceOpener& open) {
  scan = StoreScan{};
  run.Send(MSG_STAGE, 1);
  auto source = open(path);
  if (!source) {
    run.ShowError(kSourceNotOpened);
    throw WorkerEnded{};
  }
  scan.percentBase = (*source)->Size() / 100;
  scan.found->source.Open(std::move(*source));
}

}  // namespace velmora::engine
