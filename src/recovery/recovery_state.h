// The members of the engine object that the recovery steps own, grouped by the step that fills them.
#pragma once

#include <cstdint>

#include "recovery/content_allowance.h"
#include "recovery/folder_list.h"
#include "recovery/item_converter.h"
#include "recovery/named_prop_map.h"
#include "recovery/recovery_report.h"
#include "store/operations.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

/// Made anew for each run.
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

}  // namespace velmora::recovery
