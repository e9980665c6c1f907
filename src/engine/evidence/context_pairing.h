// Which list of sub-nodes belongs to a message whose node entry is gone.
//
// By its keys: a list that holds all of them. Of several, which are of versions of one message: one that is not freed
// if the message is not; then one with which the sizes add up to what the message tells; then the newest.
//
// Where many lists hold the same keys, each list is of one message: first those with which the sizes add up, then the
// nearest by id.
//
// Without keys the list must fit what the message tells of itself: it has a table of recipients if there are some, and
// one of attachments if and only if there are some; of the neighbours by id, those first with which the sizes add up,
// and then the nearest. A message that tells of neither has a list only if that was written just before it.
#pragma once

#include <vector>

#include "engine/evidence/context_facts.h"
#include "engine/evidence/subnode_lists.h"
#include "engine/evidence/tree_sizes.h"

namespace velmora::engine {

/// For each of `messages` that is in no node's use the list that belongs to it; kNoBid where none does.
std::vector<Bid> PairWithLists(const EvidenceView& view, const MessageContexts& messages, const SubnodeLists& lists,
                               TreeSizes& sizes, RunContext& run);

/// The list that holds all keys of a context of another kind; kNoBid where none does, or there are no keys.
Bid ListOfKeys(const EvidenceView& view, Bid bid, std::span<const Nid> keys, const SubnodeLists& lists);

}  // namespace velmora::engine
