#include "recovery/attachment_reader.h"
#include "recovery/item_steps.h"
#include "recovery/lost_items.h"
#include "recovery/property_ids.h"

namespace velmora::recovery {

void HandleAttachments(ItemRun& items) {
  const SubNodeList& subNodes = items.subNodes;
  if (subNodes.empty()) return;
  if (!items.message.Item(ItemKind::kMail)) {
    if (items.Current().outcome.saved) ReportUntriedAttachments(items, u"an item of its kind takes none");
    return;
  }
  // The first entry alone tells whether the message has attachments.
  if (subNodes.front().nid != kAttachmentTableNid) {
    return ReportUntriedAttachments(items, u"the message does not begin with an attachment table");
  }

  AttachmentReader reader(items);
  for (const SubNodeEntry& entry : subNodes) {
    items.run.control.PausePoint();
    if (items.state.allowance.BytesSpent() || !items.state.allowance.TakePart()) {
      ReportUntriedAttachments(items, kClaimsTooMuch);
      break;
    }
    const auto record = items.blocks.FindBlockOrLower(entry.bidData);
    const bool byIdentifier = (entry.nid & kNidTypeMask) == kNidTypeAttachment;
    if (!record) {
      ++items.subNodesHandled;
      if (byIdentifier) ReportAttachment(items, entry, TextOf(BlockFault::NotFound(entry.bidData)));
      continue;
    }
    // What is no attachment by its identifier and by its block alike is no loss: the tables stand among them.
    const bool isAttachment =
        reader.ReadAttachment(entry, *record) != AttachmentReader::Result::kNoAttachment || byIdentifier;
    ++items.subNodesHandled;
    if (isAttachment && !reader.Missing().empty()) ReportAttachment(items, entry, reader.Missing());
  }
  if (reader.AttachmentAdded()) items.run.Say(engine::AttachmentsListed{});
}

}  // namespace velmora::recovery
