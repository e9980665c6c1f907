// What a folder's own block tells of it.
#pragma once

#include <tl/expected.hpp>

#include "engine/block_record.h"
#include "engine/scanned_store.h"
#include "recovery/block_fault.h"
#include "recovery/content_allowance.h"
#include "text/code_page.h"
#include "text/text.h"

namespace velmora::recovery {

struct FolderProperties {
  text::Text name;            ///< may be empty: a name that does not look like text is none
  text::Text containerClass;  ///< empty when the block has none
};

/// A fault when the block is no property context, has no display name, or is a message; and when the allowance is
/// spent.
tl::expected<FolderProperties, BlockFault> ParseFolderProperties(const engine::ScannedStore& store,
                                                                 const engine::BlockRecord& record,
                                                                 const text::CodePage& codePage,
                                                                 ContentAllowance& allowance);

}  // namespace velmora::recovery
