// What the recovery steps work with: the members of the engine object that they own, and what they hand to readers.
#pragma once

#include <cstdint>

#include "engine/engine_state.h"
#include "engine/run.h"
#include "recovery/content_allowance.h"
#include "recovery/folder_list.h"
#include "recovery/item_converter.h"
#include "recovery/named_prop_map.h"
#include "recovery/recovery_report.h"
#include "store/operations.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

/// Grouped by the step that fills them. Made anew for each run.
struct RecoveryState {
  // Set-up: to be filled before RecoverFolders
  output::Ref<output::RDOSession> session;
  output::Ref<output::RDOStore> targetStore;
  text::Text convertedName;  ///< display name of the new store
  const text::CodePage* codePage = &text::CodePage::Lossless();
  const ItemConverters* converters = nullptr;  ///< not owned; needed from RecoverOrphans on

  // Folder recovery
  NamedPropMap namedProps;
  FolderList folders;              ///< ordered and thinned; what the panes climb
  std::uint32_t topFolderNid = 0;  ///< of the folder "Top of Personal Folders"; 0 until one is seen

  // Items
  ContentAllowance allowance;
  ContentAllowance reportAllowance;  ///< what is read for the report of losses

  RecoveryReport report;
};

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
  engine::RunContext& context;

  ValueSource Values() const { return {engine, *state.codePage, state.allowance}; }
};

}  // namespace velmora::recovery
