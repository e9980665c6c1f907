#include "recovery/lost_items.h"

#include <utility>

#include "recovery/message_classes.h"

namespace velmora::recovery {
namespace {

text::Text WhyNoItem(const ItemOutcome& outcome) {
  if (outcome.failure) return ReasonOf(*outcome.failure);
  if (!outcome.skip) return u"its item could not be saved";
  switch (*outcome.skip) {
    case SkipReason::kNoClass:
      return u"it has no message class that can be read";
    case SkipReason::kRefusedClass:
      return u"its class is not converted";
    case SkipReason::kNoFolder:
      return u"its folder is not known or could not be opened";
    default:
      return {};  // a block has its failure
  }
}

}  // namespace

void ReportLoss(RecoveryState& state, LostObject lost) {
  if (state.report.lost.size() < state.allowance.MostLosses()) {
    state.report.lost.push_back(std::move(lost));
  } else {
    ++state.report.lostNotListed;
  }
}

text::Text ReportText(RecoveryState& state, text::TextView text) {
  const bool whole = state.allowance.TakeKept(text.size());
  return text::Text(whole ? text : text.substr(0, engine::ContentAllowance::kLongestName));
}

void ReportNode(RecoveryState& state, const engine::NodeRecord& node, const ItemOutcome& outcome) {
  if (outcome.saved) return;
  if (outcome.skip) ++state.report.skipped[*outcome.skip];
  if (outcome.skip == SkipReason::kRefusedClass || node.upperPage) return;
  const bool isMessage =
      HasNidType(node.nid, NidType::kNormalMessage) || Classify(outcome.messageClass).verdict == ClassVerdict::kItem;
  if (!isMessage) return;
  ReportLoss(state, {LossKind::kMessage, node.nid, engine::LowBid(node.bidData),
                     ReportText(state, outcome.messageClass), WhyNoItem(outcome)});
}

void ReportEmbedded(RecoveryState& state, const ItemWorkRecord& record) {
  if (record.outcome.saved || record.outcome.skip == SkipReason::kRefusedClass) return;
  ReportLoss(state, {LossKind::kEmbedded, record.nid, record.bidData, ReportText(state, record.outcome.messageClass),
                     text::Text(u"embedded message: ").append(WhyNoItem(record.outcome))});
}

text::Text MessageNameOf(const ItemWorkRecord& record) {
  if (record.parent) return u"embedded message " + HexOf(record.nid);
  if (record.nid == 0) return u"the orphan in block " + HexOf(record.bidData);
  return u"message " + HexOf(record.nid);
}

void ReportAttachment(RecoveryState& state, const ItemWorkRecord& message, const SubNodeEntry& attachment,
                      text::TextView reason) {
  ReportLoss(state, {LossKind::kAttachment,
                     attachment.nid,
                     attachment.bidData,
                     {},
                     u"attachment of " + MessageNameOf(message) + u": " + text::Text(reason)});
}

}  // namespace velmora::recovery
