#include "recovery/catching_frame.h"
#include "recovery/item_losses.h"
#include "recovery/item_steps.h"
#include "recovery/lost_items.h"

namespace velmora::recovery {
namespace {

void ProcessRecord(ItemRun& items, std::uint32_t folderNid) {
  items.run.control.PausePoint();
  ItemWorkRecord& record = items.Current();
  items.subNodesHandled = 0;
  if (items.state.allowance.BytesSpent()) {
    record.outcome.skip = SkipReason::kNoBlock;
    record.outcome.fault = BlockFault{.cause = BlockFault::Cause::kTooMuch, .bid = record.bidData};
    return;
  }
  items.subNodes = ReadSubNodeList(items.engine, record.bidSub);
  items.unread = ReadUnreadSubNodes(items.engine, record.bidSub, items.subNodes, items.state.reportAllowance);
  const bool hasBlock = items.blocks.FindBlockOrLower(record.bidData).has_value();
  if (!hasBlock) {
    record.outcome.skip = SkipReason::kNoBlock;
    record.outcome.fault = BlockFault::NotFound(record.bidData);
    return;
  }
  const bool whole = WithinFrame([&] {
    const bool bodyInBounds = ProcessMessage(items, record.bidData, folderNid);
    // Only now, since a long list must not take what the message itself may.
    items.state.allowance.TakeBytes(items.subNodes.size() * sizeof(SubNodeEntry));
    if (bodyInBounds) HandleAttachments(items);
    if (!bodyInBounds) ReportUntriedAttachments(items, u"the body of its message is out of bounds");
  });
  if (!whole) ReportUntriedAttachments(items, u"an operation on its message failed");
  ReportItemLosses(items);
}

}  // namespace

ItemOutcome ProcessNode(ItemRun& items, std::uint32_t nid, std::uint32_t bidData, std::uint32_t bidSub,
                        std::uint32_t folderNid) {
  items.state.allowance.BeginNode();
  items.message = MessageWork{};
  items.queue.clear();
  ItemWorkRecord& first = items.queue.emplace_back();
  first.nid = nid;
  first.bidData = bidData;
  first.bidSub = bidSub;
  // The queue grows on the way: an attachment that is a message becomes a record of its own.
  for (items.cursor = 0; items.cursor < items.queue.size(); ++items.cursor) {
    ProcessRecord(items, folderNid);
    items.subNodes.clear();
  }
  CloseWorkQueue(items);

  for (std::size_t i = 1; i < items.queue.size(); ++i) ReportEmbedded(items.state, items.queue[i]);
  return first.outcome;
}

}  // namespace velmora::recovery
