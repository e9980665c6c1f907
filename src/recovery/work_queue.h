// The messages that one node leads to: its own, and behind it those that are embedded in it.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "recovery/block_failure.h"
#include "recovery/recovery_report.h"
#include "store/operations.h"

namespace velmora::recovery {

/// What became of a node, an orphan or an embedded message: for the report alone.
struct ItemOutcome {
  bool saved = false;              ///< an item of any kind reached the new store
  std::optional<SkipReason> skip;  ///< why none was made
  std::optional<Failure> failure;  ///< of its data block, where that was the reason
  text::Text messageClass;         ///< empty when none could be read
};

/// One message to convert.
struct ItemWorkRecord {
  std::uint32_t bidData = 0;                      ///< block of the property context
  std::uint32_t bidSub = 0;                       ///< block of the sub-node list
  output::Ref<output::RDOMail> parentItem = {};   ///< of an embedded message: the mail it belongs to
  output::Ref<output::RDOMail> createdItem = {};  ///< the mail made for this record
  text::Text attachmentName = {};                 ///< display name of an embedded message
  std::uint32_t nid = 0;                          ///< of the node, or of the attachment that holds the message
  std::optional<std::size_t> parent = {};         ///< place in the queue of the record that embeds this one
  ItemOutcome outcome = {};
};

/// References stay valid while it grows.
using WorkQueue = std::deque<ItemWorkRecord>;

}  // namespace velmora::recovery
