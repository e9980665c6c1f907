#include "recovery/lost_items.h"

#include <utility>

#include "recovery/message_classes.h"
#include "recovery/property_ids.h"

namespace velmora::recovery {
namespace {

text::TextView ReasonOf(const ItemOutcome& outcome) {
  if (outcome.tooMuch) return kClaimsTooMuch;
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

void ReportLoss(RecoveryState& state, LostObject lost) {
  if (state.allowance.TakeLoss()) {
    state.report.lost.push_back(std::move(lost));
  } else {
    ++state.report.lostUntold;
  }
}

text::Text ToldClass(RecoveryState& state, text::TextView messageClass) {
  const bool whole = state.allowance.TakeKept(messageClass.size());
  return text::Text(whole ? messageClass : messageClass.substr(0, ContentAllowance::kLongestName));
}

void ReportNode(RecoveryState& state, std::uint32_t nid, std::uint32_t bidData, const ItemOutcome& outcome) {
  if (outcome.saved) return;
  if (outcome.skip) ++state.report.skipped[*outcome.skip];
  if (outcome.skip == SkipReason::kRefusedClass) return;
  const bool isMessage =
      (nid & kNidTypeMask) == kNidTypeMessage || Classify(outcome.messageClass).verdict == ClassVerdict::kItem;
  if (!isMessage) return;
  ReportLoss(state,
             {LossKind::kMessage, nid, bidData, ToldClass(state, outcome.messageClass), text::Text(ReasonOf(outcome))});
}

void ReportEmbedded(RecoveryState& state, const ItemWorkRecord& record) {
  if (record.outcome.saved || record.outcome.skip == SkipReason::kRefusedClass) return;
  ReportLoss(state, {LossKind::kEmbedded, record.nid, record.bidData, ToldClass(state, record.outcome.messageClass),
                     text::Text(u"embedded message: ").append(ReasonOf(record.outcome))});
}

void ReportAttachment(RecoveryState& state, const SubNodeEntry& attachment, text::TextView reason) {
  ReportLoss(
      state,
      {LossKind::kAttachment, attachment.nid, attachment.bidData, {}, text::Text(u"attachment: ").append(reason)});
}

void ReportUntriedAttachments(ItemRun& items, text::TextView reason) {
  for (std::size_t i = items.subNodesHandled; i < items.subNodes.size(); ++i) {
    const SubNodeEntry& entry = items.subNodes[i];
    if ((entry.nid & kNidTypeMask) == kNidTypeAttachment) ReportAttachment(items.state, entry, reason);
  }
}

}  // namespace velmora::recovery
