#include <utility>

#include "engine/messages.h"
#include "engine/steps.h"

namespace velmora::engine {

void OpenSource(EngineState& state, RunContext& run, const std::filesystem::path& path,
                const platform::SourceOpener& open) {
  state = EngineState{};
  run.Send(MSG_STAGE, 1);
  auto source = open(path);
  if (!source) {
    run.ShowError(kSourceNotOpened);
    throw WorkerEnded{};
  }
  state.source = std::move(*source);
  state.percentBase = state.source->Size() / 100;
}

}  // namespace velmora::engine
