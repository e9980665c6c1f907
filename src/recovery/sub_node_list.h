// The sub-nodes of a message, or of an attachment.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/scanned_store.h"

namespace velmora::recovery {

/// Ids are the low 32 bits of what the store holds.
struct SubNodeEntry {
  std::uint32_t nid = 0;
  std::uint32_t bidData = 0;
  std::uint32_t bidSub = 0;

  friend bool operator==(const SubNodeEntry&, const SubNodeEntry&) = default;
};

using SubNodeList = std::vector<SubNodeEntry>;

/// The list in the block `bidSub`, at most 65,535 bytes of entries. An id of 0 or one without a block gives no
/// list; a block that claims more entries than it can hold gives a list of one entry that is all zeros. Type and
/// level of the block are not looked at, so a block of the upper level gives entries that later look-ups refuse,
/// and a count of 0 still gives one entry.
SubNodeList ReadSubNodeList(const engine::ScannedStore& store, std::uint32_t bidSub);

}  // namespace velmora::recovery
