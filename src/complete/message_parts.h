// The sub-nodes of a message by what they are.
#pragma once

#include <vector>

#include "store/ndb/subnode_tree_reader.h"

namespace velmora::complete {

struct MessageParts {
  /// Points into `subnodes`.
  explicit MessageParts(const std::vector<ndb::SubnodeEntry>& subnodes);

  const ndb::SubnodeEntry* recipientTable = nullptr;
  const ndb::SubnodeEntry* attachmentTable = nullptr;
  std::vector<const ndb::SubnodeEntry*> attachments;  ///< by ascending id
};

}  // namespace velmora::complete
