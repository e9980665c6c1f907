// What the report says of losses.
#pragma once

#include <cstdint>

#include "engine/node_list.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "recovery/work_queue.h"
#include "store/format/ids.h"
#include "text/text.h"

namespace velmora::recovery {

/// Is a node of that type by its id? It only serves the report: what a node is, its block says.
constexpr bool HasNidType(std::uint32_t nid, NidType type) { return TypeOf(Nid{nid}) == type; }

/// A text of the store as the report has it. One that fills a block must not fill the report, node by node: it is
/// cut once that would be out of proportion to the store.
text::Text ReportText(RecoveryState& state, text::TextView text);

// What is lost is listed as long as the list is in proportion to the store, and only counted beyond that.

/// Lists a loss, or counts it where the list is full.
void ReportLoss(RecoveryState& state, LostObject lost);

/// Counts a node or orphan that gave no item, and lists it as lost if it is known for a message: its id says
/// that it is a message, or its class is one that is converted. A class refused by rule is no loss, and neither is
/// what an upper page of the node tree was read as: it names a key, a page and its place, and no node at all.
void ReportNode(RecoveryState& state, const engine::NodeRecord& node, const ItemOutcome& outcome);

/// Lists an embedded message that was queued and reached neither its parent nor a folder.
void ReportEmbedded(RecoveryState& state, const ItemWorkRecord& record);

/// The message as a reason names it.
text::Text MessageNameOf(const ItemWorkRecord& record);

/// Lists an attachment of that message that was not brought across, or not whole.
void ReportAttachment(RecoveryState& state, const ItemWorkRecord& message, const SubNodeEntry& attachment,
                      text::TextView reason);

}  // namespace velmora::recovery
