#include "complete/message_parts.h"

#include <algorithm>

#include "store/format/store_nodes.h"

namespace velmora::complete {

MessageParts::MessageParts(const std::vector<ndb::SubnodeEntry>& subnodes) {
  for (const ndb::SubnodeEntry& subnode : subnodes) {
    if (subnode.nid == nid::kRecipientTable && recipientTable == nullptr) recipientTable = &subnode;
    if (subnode.nid == nid::kAttachmentTable && attachmentTable == nullptr) attachmentTable = &subnode;
    if (TypeOf(subnode.nid) == NidType::kAttachment) attachments.push_back(&subnode);
  }
  std::ranges::sort(attachments, {}, &ndb::SubnodeEntry::nid);
}

}  // namespace velmora::complete
