// What a run reports of itself. It changes nothing in what is converted.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "engine/event.h"
#include "text/text.h"

namespace velmora::recovery {

/// Why a node gave no item.
enum class SkipReason {
  kNoBlock,       ///< the source has no block of that id
  kBadHeap,       ///< the block is no property context
  kNoClass,       ///< the context has no message class, or none that can be read
  kRefusedClass,  ///< a class that the rules leave out: no loss
  kNoFolder,      ///< its folder is not known, or could not be opened or made
};

/// What a person would miss.
enum class LossKind {
  kMessage,      ///< an item of any class
  kEmbedded,     ///< a message within a message
  kAttachment,   ///< the content of an attachment, or a part of it
  kFolder,       ///< a folder that was not made, or not as it was
  kBody,         ///< the body of an item, or a part of it
  kText,         ///< a subject, a name or another field of an item
  kRecipients,   ///< senders or recipients of an item
  kMembers,      ///< members of a distribution list
  kRow,          ///< values of an item in the table of its folder
  kSourceRange,  ///< a stretch of the source that could not be read
  kRun,          ///< what a step of the run had not done yet when it ended early
};

/// An object, or a part of one, that should have come across and did not.
struct LostObject {
  LossKind kind = LossKind::kMessage;
  std::uint32_t nid = 0;  ///< of the node or sub-node; 0 for what was found without one
  std::uint32_t bidData = 0;
  text::Text messageClass = {};  ///< empty where it could not be read
  text::Text reason = {};        ///< in plain words
};

struct RecoveryReport {
  std::vector<engine::FolderRecord> folders;  ///< as recovered, by ascending nid, before the list is thinned
  std::map<text::Text, std::uint64_t> items;  ///< created, by the class text handed to the output library
  std::uint64_t attachments = 0;              ///< contents attached
  std::uint64_t embedded = 0;                 ///< messages attached to their parents
  std::uint64_t nodesDone = 0;                ///< nodes and orphaned blocks that were worked through
  std::map<SkipReason, std::uint64_t> skipped;
  std::vector<LostObject> lost;
  std::uint64_t lostNotListed = 0;  ///< those beyond, where the list would grow out of proportion to the store
};

}  // namespace velmora::recovery
