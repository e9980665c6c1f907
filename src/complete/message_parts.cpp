#include "complete/message_parts.h"

#include <algorithm>

#include "store/format/failures.h"
#include "store/format/property_tags.h"
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

std::optional<ndb::SubnodeEntry> ObjectOf(ltp::PropertyContext& attachment) {
  if (const auto object = attachment.ReadObject(tag::kAttachDataObject)) {
    auto subnode = attachment.FindSubnode(object->nid);
    if (subnode) return subnode;
    RaiseCorrupt({ObjectKind::kSubnode, object->nid}, Value(object->nid), "the attachment's object is not there");
  }
  if (attachment.Find(IdOf(tag::kAttachDataObject)) != nullptr) return std::nullopt;
  for (const ndb::SubnodeEntry& subnode : attachment.Subnodes()) {
    if (TypeOf(subnode.nid) == NidType::kNormalMessage) return subnode;
  }
  return std::nullopt;
}

}  // namespace velmora::complete
