// The members of the engine object that the recovery steps own, grouped by the step that fills them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/scanned_store.h"
#include "recovery/content_allowance.h"
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

/// Made anew for each run.
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

  // Placement: kept from one message to the next
  output::Ref<output::RDOFolder> targetFolder;  ///< receives the next item
  text::Text currentFolderName;                 ///< leaf of the folder that took the last message placed
  bool inOrphanPhase = false;                   ///< raised once, at the first orphan

  // Items
  ContentAllowance allowance;
  ContentAllowance reportAllowance;  ///< what is read to tell of losses

  RecoveryReport report;
};

}  // namespace velmora::recovery
