// All that is kept of the contexts that no other block names, read in one pass.
#pragma once

#include <map>
#include <unordered_map>

#include "engine/evidence/row_matching.h"
#include "engine/evidence/table_owners.h"

namespace velmora::engine {

struct ContextSurvey {
  MessageContexts messages;
  StoreFolders folders;
  Bid store = kNoBid;    ///< the newest that is not freed of those that look like the store's own properties
  Bid nameMap = kNoBid;  ///< likewise of the names of properties
  std::unordered_map<Nid, Bid> contextOf;       ///< of folders that are listed, and are no nodes in use
  std::unordered_map<Nid, Bid> newerContextOf;  ///< of folders whose node has an older one, by a row like no other
};

/// Offers the messages to `rows`, which is sealed.
ContextSurvey SurveyContexts(const EvidenceView& view, std::span<const Bid> bids, const SubnodeLists& lists,
                             std::span<const ListedFolder> folders, RowMatching& rows, RunContext& run);

/// The keys of a context, read again.
std::vector<Nid> KeysOfContext(const EvidenceView& view, Bid bid);

}  // namespace velmora::engine
