// What a folder's own block tells of it.
#pragma once

#include <optional>

#include "engine/block_index.h"
#include "engine/engine_state.h"
#include "recovery/content_allowance.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

struct FolderProperties {
  text::Text name;            ///< may be empty: a name that does not look like text is none
  text::Text containerClass;  ///< empty when the block has none
};

/// Nothing when the block is no property context, has no display name, or is a message; nor when the
/// allowance is spent.
std::optional<FolderProperties> ParseFolderProperties(engine::EngineState& engine, const engine::BlockRecord& record,
                                                      const text::CodePage& codePage, ContentAllowance& allowance);

}  // namespace velmora::recovery
