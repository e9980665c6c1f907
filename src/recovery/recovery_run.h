// What the readers of items work with.
#pragma once

#include "engine/engine_state.h"
#include "engine/run.h"
#include "recovery/recovery_state.h"

namespace velmora::recovery {

/// For a reader of values: the source, the page of its 8-bit texts, and what may still be taken out of it.
struct ValueSource {
  engine::EngineState& engine;
  const text::CodePage& codePage;
  ContentAllowance& allowance;
};

/// For a step that writes as well: what is read, what is written, and who hears of it.
struct RecoveryRun {
  RecoveryState& state;
  engine::EngineState& engine;
  engine::RunContext& run;

  ValueSource Values() const { return {engine, *state.codePage, state.allowance}; }
};

}  // namespace velmora::recovery
