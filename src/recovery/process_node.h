// One node on its way into the new store: its message, and behind it all messages embedded in it. Rules, in order:
//
//  1. ProcessRecord takes the records of the queue one by one: the list of sub-nodes, the message with its body
//     (ProcessMessage), its attachments (HandleAttachments). What fails in a message costs that message alone.
//  2. HandleAttachments: a message has attachments if it is a mail and an attachment table is the first of its
//     sub-nodes (docs/fidelity.md#attachment-table). Then each sub-node is tried.
//  3. An attachment that is a message is queued, so the queue grows on the way. Its display name goes to the record
//     that is the last one then (docs/fidelity.md#embedded-name).
//  4. CloseWorkQueue goes from the last record to the first, so that a mail is attached to its parent when all that
//     belongs into it is in place. A parent leaves the folder in which it was built when a record with another parent
//     follows. The first mail is saved last.
#pragma once

#include <cstdint>

#include "recovery/message_reader.h"
#include "recovery/recovery_state.h"
#include "recovery/work_queue.h"

namespace velmora::recovery {

/// The blocks of a node, or of an orphan, which has no `nid`.
struct NodeBlocks {
  std::uint32_t nid = 0;
  std::uint32_t bidData = 0;
  std::uint32_t bidSub = 0;
};

/// A failing close of the queue leaves by exception.
ItemOutcome ProcessNode(const RecoveryRun& run, const NodeBlocks& node, const MessagePlace& place,
                        LeftByTheItemBefore& left);

}  // namespace velmora::recovery
