// What the recovery steps work with: the members of the engine object that they own, and what they hand to readers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/content_allowance.h"
#include "engine/run.h"
#include "engine/scanned_store.h"
#include "recovery/folder_list.h"
#include "recovery/item_converter.h"
#include "recovery/named_prop_map.h"
#include "recovery/recovery_report.h"
#include "store/operations.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

/// How far the steps have used up the node list, which itself stays as the scan left it.
struct UsedNodes {
  std::vector<bool> unlinked;    ///< by position; none of those beyond the end
  std::uint32_t countedOff = 0;  ///< of the count of nodes

  bool IsUnlinked(std::size_t position) const { return position < unlinked.size() && unlinked[position]; }
  std::uint32_t Left(const engine::ScannedStore& store) const { return store.nodeCount - countedOff; }
};

/// Grouped by the step that fills them. Made anew for each run.
struct RecoveryState {
  // Set-up: to be filled before RecoverFolders
  output::Ref<output::RDOSession> session;
  output::Ref<output::RDOStore> targetStore;
  text::Text convertedName;  ///< display name of the new store
  const text::CodePage* codePage = &text::CodePage::Lossless();
  const ItemConverters* converters = nullptr;  ///< not owned; needed from RecoverOrphans on

  // Folder recovery
  UsedNodes usedNodes;
  NamedPropMap namedProps;
  FolderList folders;              ///< ordered and thinned; what the panes climb
  std::uint32_t topFolderNid = 0;  ///< of the folder "Top of Personal Folders"; 0 until one is seen

  // Items
  engine::ContentAllowance allowance;
  engine::ContentAllowance reportAllowance;  ///< what is read for the report of losses

  RecoveryReport report;
};

/// For a reader of values: the source, the page of its 8-bit texts, and what may still be taken out of it.
struct ValueSource {
  const engine::ScannedStore& store;
  const text::CodePage& codePage;
  engine::ContentAllowance& allowance;
};

/// For a step that writes as well: what is read, what is written, and who hears of it.
struct RecoveryRun {
  RecoveryState& state;
  const engine::ScannedStore& store;
  engine::RunContext& context;

  ValueSource Values() const { return {store, *state.codePage, state.allowance}; }
};

}  // namespace velmora::recovery
