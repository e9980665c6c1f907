// The sub-nodes that the reading of a message's list leaves out, for the report alone.
#pragma once

#include <cstdint>

#include "engine/scanned_store.h"
#include "recovery/content_allowance.h"
#include "recovery/sub_node_list.h"
#include "text/text.h"

namespace velmora::recovery {

struct UnreadSubNodes {
  SubNodeList entries;  ///< those that are known: of a list with an upper level
  text::Text why;       ///< in plain words; empty when the list was read, or there is none
};

/// Looks at the list in the block `bidSub` where what ReadSubNodeList made of it, `read`, cannot be all.
UnreadSubNodes ReadUnreadSubNodes(const engine::ScannedStore& store, std::uint32_t bidSub, const SubNodeList& read,
                                  ContentAllowance& allowance);

}  // namespace velmora::recovery
