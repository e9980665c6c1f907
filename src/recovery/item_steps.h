// The steps that turn one node into items. All but ProcessNode work on the record under work of the ItemRun.
#pragma once

#include <cstdint>

#include "recovery/item_run.h"
#include "text/text.h"

namespace velmora::recovery {

/// process_node.cpp. Converts one message with all that it embeds. What fails in a message costs that message
/// alone; a failing close of the queue leaves by exception.
ItemOutcome ProcessNode(ItemRun& items, std::uint32_t nid, std::uint32_t bidData, std::uint32_t bidSub,
                        std::uint32_t folderNid);

/// work_queue.cpp. Attaches embedded messages to their parents, deepest first, and saves.
void CloseWorkQueue(ItemRun& items);

/// process_message.cpp. False only when an in-line body was out of bounds; true: the attachments come next.
bool ProcessMessage(ItemRun& items, std::uint32_t bidData, std::uint32_t folderNid);

/// parse_message.cpp. Walks the property context; makes the item and hands each record to its converter.
void ParseMessage(ItemRun& items, std::uint32_t bidData, std::uint32_t folderNid);

/// place_message.cpp. Sets `targetFolder`; false when the message has no folder. Raises where a folder cannot be
/// opened or made.
bool PlaceMessage(ItemRun& items, text::TextView messageClass, std::uint32_t folderNid);

/// create_item.cpp. Creates the item in `targetFolder`. False when the class is none or is refused.
bool CreateItemForClass(ItemRun& items, text::TextView messageClass);

/// create_item.cpp. The item of an orphan whose class could not be read.
void CreateFallbackMail(ItemRun& items);

/// finish_item.cpp. Saves an item of the six non-mail kinds; a failing save loses that item alone.
void FinishItem(ItemRun& items);

/// handle_attachments.cpp. Turns the sub-nodes of the message into attachments of its mail.
void HandleAttachments(ItemRun& items);

}  // namespace velmora::recovery
