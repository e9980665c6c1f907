#include <utility>

#include "engine/steps.h"

namespace velmora::engine {

void OpenSource(EngineState& state, RunContext& run, const std::filesystem::path& path,
                const platform::SourceOpener& open) {
  state = EngineState{};
  run.BeginStage(1);
  auto source = open(path);
  if (!source) {
    run.Say(Notice{NoticeKind::kSourceNotOpened, {}, source.error()});
    throw WorkerEnded{};
  }
  state.source = std::move(*source);
  state.percentBase = state.source->Size() / 100;
}

}  // namespace velmora::engine
