// What is kept of a message's properties while its node is looked for.
//
// A message has a class (001A) and a size (0E08), and no count of contents (3602), which folders have. Those in the
// tables of hidden items carry a flag.
//
// The keys of a context are the ids of the sub-nodes in which it has its large values.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "engine/evidence/subnode_lists.h"
#include "store/ltp/property_context.h"

namespace velmora::engine {

/// A hash of bytes; never 0, which stands for bytes that are not there.
std::uint32_t HashOf(std::span<const std::byte> bytes);

struct MessageFacts {
  Bid bid{};
  std::uint32_t size = 0;       ///< as the message tells it, with its sub-nodes
  std::uint32_t searchKey = 0;  ///< hash; 0 where there is none
  std::uint32_t modified = 0;   ///< likewise of the time
  std::uint32_t firstKey = 0;   ///< in MessageContexts::keys
  std::uint16_t keyCount = 0;
  bool isHidden : 1 = false;
  bool hasRecipients : 1 = false;   ///< the texts that tell of them are not empty
  bool hasAttachments : 1 = false;  ///< by its flags
  bool hasCommonKeys : 1 = false;   ///< which tell nothing of whose versions they are
};
static_assert(sizeof(MessageFacts) == 32);

/// All messages that were found, whether a node is known for them or not.
struct MessageContexts {
  std::vector<MessageFacts> facts;  ///< by ascending id of their blocks
  std::vector<Nid> keys;

  std::span<const Nid> KeysOf(const MessageFacts& message) const {
    return std::span(keys).subspan(message.firstKey, message.keyCount);
  }
};

bool IsMessage(const ltp::PropertyContext& context);
bool IsHidden(ltp::PropertyContext& message);

/// The ids of the sub-nodes that the values of a context lie in, appended.
void AppendKeys(const ltp::PropertyContext& context, std::vector<Nid>& keys);

/// Takes a message in.
void AddFacts(Bid bid, ltp::PropertyContext& context, const SubnodeLists& lists, MessageContexts& messages);

/// The bytes of a value of any type by its id; nothing when it is not there or lies beside the heap.
std::optional<std::vector<std::byte>> SmallValue(ltp::PropertyContext& context, std::uint16_t id);

}  // namespace velmora::engine
