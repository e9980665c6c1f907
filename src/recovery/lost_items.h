// What the report says of losses.
#pragma once

#include <cstdint>

#include "recovery/item_run.h"
#include "text/text.h"

namespace velmora::recovery {

/// Counts a node or an orphan that gave no item, and lists it if it should have given one: its identifier says
/// that it is a message, or its class is one that is converted. A class refused by rule is no loss.
void ReportNode(RecoveryReport& report, std::uint32_t nid, std::uint32_t bidData, const ItemOutcome& outcome);

/// Lists an embedded message that was queued and reached neither its parent nor a folder.
void ReportEmbedded(RecoveryReport& report, const ItemWorkRecord& record);

/// Lists an attachment of the message under work that was not brought across.
void ReportAttachment(RecoveryReport& report, const SubNodeEntry& attachment, text::TextView reason);

/// Lists every sub-node of the message under work that is an attachment by its identifier and was not tried; no more
/// of them than the store may have attachments.
void ReportUntriedAttachments(ItemRun& items, text::TextView reason);

}  // namespace velmora::recovery
