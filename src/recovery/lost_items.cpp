#include "recovery/lost_items.h"

#include "recovery/message_classes.h"
#include "recovery/property_ids.h"

namespace velmora::recovery {
namespace {

text::TextView ReasonOf(const ItemOutcome& outcome) {
  if (!outcome.skip) return u"its item could not be saved";
  switch (*outcome.skip) {
    case SkipReason::kNoBlock:
      return u"its data block was not found";
    case SkipReason::kBadHeap:
      return u"its data block is no property context";
    case SkipReason::kNoClass:
      return u"it has no message class that can be read";
    case SkipReason::kRefusedClass:
      return u"its class is not converted";
    case SkipReason::kNoFolder:
      return u"its folder is not known or could not be opened";
  }
  return {};
}

}  // namespace

void ReportNode(RecoveryReport& report, std::uint32_t nid, std::uint32_t bidData, const ItemOutcome& outcome) {
  if (outcome.saved) return;
  if (outcome.skip) ++report.skipped[*outcome.skip];
  if (outcome.skip == SkipReason::kRefusedClass) return;
  const bool isMessage =
      (nid & kNidTypeMask) == kNidTypeMessage || Classify(outcome.messageClass).verdict == ClassVerdict::kItem;
  if (isMessage) report.lost.push_back({nid, bidData, outcome.messageClass, text::Text(ReasonOf(outcome))});
}

void ReportEmbedded(RecoveryReport& report, const ItemWorkRecord& record) {
  if (record.outcome.saved || record.outcome.skip == SkipReason::kRefusedClass) return;
  report.lost.push_back({record.nid, record.bidData, record.outcome.messageClass,
                         text::Text(u"embedded message: ").append(ReasonOf(record.outcome))});
}

void ReportAttachment(RecoveryReport& report, const SubNodeEntry& attachment, text::TextView reason) {
  report.lost.push_back({attachment.nid, attachment.bidData, {}, text::Text(u"attachment: ").append(reason)});
}

void ReportUntriedAttachments(ItemRun& items, text::TextView reason) {
  for (std::size_t i = items.subNodesHandled; i < items.subNodes.size(); ++i) {
    const SubNodeEntry& entry = items.subNodes[i];
    if ((entry.nid & kNidTypeMask) != kNidTypeAttachment) continue;
    if (!items.state.allowance.TakePart()) return;
    ReportAttachment(items.state.report, entry, reason);
  }
}

}  // namespace velmora::recovery
