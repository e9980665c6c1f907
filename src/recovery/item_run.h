// What the steps of item recovery share: the partners of the run, the work queue of one node, and the message
// under work in it.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "engine/block_reader.h"
#include "engine/engine_state.h"
#include "engine/run.h"
#include "recovery/block_fault.h"
#include "recovery/body_reader.h"
#include "recovery/item_converter.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "recovery/unread_sub_nodes.h"
#include "store/operations.h"

namespace velmora::recovery {

/// What became of a node, an orphan or an embedded message: for the report alone.
struct ItemOutcome {
  bool saved = false;               ///< an item of any kind reached the new store
  std::optional<SkipReason> skip;   ///< why none was made
  std::optional<BlockFault> fault;  ///< of its data block, where that was the reason
  text::Text messageClass;          ///< empty when none could be read
};

/// One message to convert.
struct ItemWorkRecord {
  std::uint32_t bidData = 0;                 ///< block of the property context
  std::uint32_t bidSub = 0;                  ///< block of the sub-node list
  output::Ref<output::RDOMail> parentItem;   ///< of an embedded message: the mail it belongs to
  output::Ref<output::RDOMail> createdItem;  ///< the mail made for this record
  text::Text attachmentName;                 ///< display name of an embedded message
  std::uint32_t nid = 0;                     ///< of the node, or of the attachment that holds the message
  std::optional<std::size_t> parent;         ///< place in the queue of the record that embeds this one
  ItemOutcome outcome;
};

/// A record, and what of its value is known while the message's block is at hand.
struct NotedRecord {
  PropertyRecord record;
  std::optional<std::uint64_t> size;  ///< bytes in the message's block; nothing for a value that is not in it
  std::uint32_t head = 0;             ///< its first four bytes
};

/// A value that the item has a field for and that does not reach it.
struct LostValue {
  output::Field field = output::Field::Subject;
  NotedRecord value;
  text::Text reason;  ///< empty: it does not stand in the message's own block
};

/// What the steps note for the report while they work on a message.
struct MessageLosses {
  std::array<std::optional<NotedRecord>, kBodyKinds> bodies;  ///< those that the message has
  std::optional<BodyKind> bodyTaken;                          ///< the one that came across
  text::Text bodyMissing;                                     ///< what is not as it was in that one
  std::vector<LostValue> values;
  std::optional<NotedRecord> members;  ///< of a distribution list
  bool hasAttachments = false;         ///< the message says so itself
};

/// The message under work; made anew for each.
struct MessageWork {
  Bytes readBuffer;
  MessageBlock block;  ///< views readBuffer

  /// By kind: is it the kind of the item under work, and the item. One kind, unless the classes of a damaged
  /// message contradict each other.
  std::array<bool, kItemKinds> kindSet{};
  std::array<output::Ref<output::RDOMail>, kItemKinds> items;

  BodyProperties body;
  bool classRefused = false;
  MailState mail;
  MessageLosses losses;

  bool IsKind(ItemKind kind) const { return kindSet[static_cast<std::size_t>(kind)]; }
  output::Ref<output::RDOMail>& Item(ItemKind kind) { return items[static_cast<std::size_t>(kind)]; }
};

struct ItemRun {
  ItemRun(RecoveryState& theState, engine::EngineState& theEngine, engine::RunContext& theRun)
      : state(theState), engine(theEngine), run(theRun), blocks(theEngine) {}

  RecoveryState& state;
  engine::EngineState& engine;
  engine::RunContext& run;
  engine::BlockReader blocks;

  std::deque<ItemWorkRecord> queue;  ///< references stay valid while it grows
  std::size_t cursor = 0;            ///< the record under work
  SubNodeList subNodes;              ///< of the message under work
  std::size_t subNodesHandled = 0;   ///< how many of them have been tried as attachments
  UnreadSubNodes unread;             ///< of the message under work
  MessageWork message;

  ItemWorkRecord& Current() { return queue[cursor]; }
};

}  // namespace velmora::recovery
