// Reads one message: walks the records of its property context, makes the item of its class, and hands each record to
// the converter of that kind. Rules, in the order in which the walk applies them to a record:
//
//  1. A class record makes an item (message_item.h). One that does not stand in the block ends the message at once,
//     and an item of another kind than mail is not saved then. Records ahead of it have no item to go to
//     (docs/fidelity.md#ahead-of-class).
//  2. Sensitivity, importance and flag icon leave their values for the mail converter.
//  3. Of a mail the first subject, or topic of the conversation, becomes the subject; the body properties are noted.
//     HTML decides about the body in an "ost" alone (docs/fidelity.md#one-body).
//  4. The record goes to the converter of the kind; of a mail only where the place of its value lies in the block. What
//     fails there costs an item of another kind that field, and a mail all records behind it.
//  5. Behind the last record an item of another kind is saved (FinishItem), and the block of the message is let go.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "recovery/body_reader.h"
#include "recovery/item_converter.h"
#include "recovery/message_item.h"
#include "recovery/recovery_state.h"
#include "recovery/sub_node_list.h"
#include "recovery/work_queue.h"

namespace velmora::recovery {

/// Where the messages of a node go.
struct MessagePlace {
  std::uint32_t folderNid = 0;                                      ///< of the node's folder
  std::optional<output::Ref<output::RDOFolder>> orphanFolder = {};  ///< of an orphan: that of all orphans
};

/// What one item leaves to the next.
struct LeftByTheItemBefore {
  /// Name of the folder that took the last message placed. Orphans are not placed, so a mail among them counts as one
  /// in the folder of sent mails when the last message before the orphans lay there (docs/fidelity.md#sent).
  text::Text folderName;
  OpenedFolder opened;
};

/// A record as the report has use for it when the message's block is gone.
struct ReportedRecord : PropertyRecord {
  std::optional<std::uint64_t> size;  ///< bytes of the value; nothing where it is not in the message's block
  std::uint32_t head = 0;             ///< the first four of them
};

/// A field of the item whose record does not reach it.
struct LostField {
  output::Field field = output::Field::Subject;
  ReportedRecord record;
  text::Text reason;  ///< empty: the value does not stand in the message's own block
};

/// What of a message is known to be lost, or may be.
struct MessageLosses {
  std::array<std::optional<ReportedRecord>, kBodyKinds> bodies;  ///< those that the message has
  std::optional<BodyKind> bodyTaken;                             ///< the one that came across
  text::Text bodyMissing;                                        ///< what is not as it was in that one
  std::vector<LostField> fields;
  std::optional<ReportedRecord> members;  ///< of a distribution list
  bool hasAttachments = false;            ///< the message says so itself
};

/// What the walk over the records of a message made of it.
struct ParsedMessage {
  Bytes bytes;
  MessageBlock block;  ///< views `bytes`
  ItemOutcome outcome;
  MessageItems items;
  BodyProperties body;
  MessageLosses losses;
};

/// The message whose block has the id `bidData`; `subNodes` are its own.
ParsedMessage ParseMessage(const RecoveryRun& run, std::uint32_t bidData, const SubNodeList& subNodes,
                           const MessagePlace& place, LeftByTheItemBefore& left);

}  // namespace velmora::recovery
