// The sub-nodes of a message by what they are.
#pragma once

#include <optional>
#include <vector>

#include "store/ltp/property_context.h"
#include "store/ndb/subnode_tree_reader.h"

namespace velmora::complete {

struct MessageParts {
  /// Points into `subnodes`.
  explicit MessageParts(const std::vector<ndb::SubnodeEntry>& subnodes);

  const ndb::SubnodeEntry* recipientTable = nullptr;
  const ndb::SubnodeEntry* attachmentTable = nullptr;
  std::vector<const ndb::SubnodeEntry*> attachments;  ///< by ascending id
};

/// The sub-node of an attachment that its property names; in one without any data, the message that lies there. Raises
/// FailureError where what is named is not there.
std::optional<ndb::SubnodeEntry> ObjectOf(ltp::PropertyContext& attachment);

}  // namespace velmora::complete
