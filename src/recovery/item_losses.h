// What of a message's own values and attachments does not come across, for the report alone.
#pragma once

#include <cstdint>
#include <optional>

#include "recovery/message_reader.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "recovery/work_queue.h"

namespace velmora::recovery {

/// The sub-nodes that the reading of a message's list leaves out.
struct UnreadSubNodes {
  SubNodeList entries;             ///< those that are known: of a list with an upper level
  std::optional<Failure> failure;  ///< nothing when the list was read, or there is none
};

/// The sub-nodes of one message.
struct MessageSubNodes {
  SubNodeList entries;
  std::size_t tried = 0;  ///< how many of them have been tried as attachments
  UnreadSubNodes unread;
};

/// Looks at the list in the block `bidSub` where what ReadSubNodeList made of it, `read`, cannot be all.
UnreadSubNodes ReadUnreadSubNodes(const RecoveryRun& run, std::uint32_t bidSub, const SubNodeList& read);

/// Lists every sub-node that is an attachment by its identifier and was not tried.
void ReportUntriedAttachments(RecoveryState& state, const ItemWorkRecord& record, const MessageSubNodes& subNodes,
                              text::TextView reason);

/// Lists what the message is known to lack in the new store: its body, fields, members, and the attachments of a list
/// that was not read. Says nothing of a message that gave no item: that is lost as a whole.
void ReportItemLosses(const RecoveryRun& run, const ItemWorkRecord& record, const ParsedMessage& message,
                      const MessageSubNodes& subNodes);

}  // namespace velmora::recovery
