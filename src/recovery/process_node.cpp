#include "recovery/process_node.h"

#include <ranges>
#include <utility>

#include "recovery/attachment_reader.h"
#include "recovery/catching_frame.h"
#include "recovery/item_losses.h"
#include "recovery/lost_items.h"
#include "store/format/store_nodes.h"

namespace velmora::recovery {

using output::RDOMail;
using output::Ref;

namespace {

/// Messages within messages: several times what people forward to one another.
constexpr int kDeepestEmbedding = 100;

class WorkQueueRun {
 public:
  WorkQueueRun(const RecoveryRun& run, const NodeBlocks& node, const MessagePlace& place, LeftByTheItemBefore& left)
      : run_(run), place_(place), left_(left) {
    queue_.push_back({.bidData = node.bidData, .bidSub = node.bidSub, .nid = node.nid});
  }

  ItemOutcome Process() {
    for (cursor_ = 0; cursor_ < queue_.size(); ++cursor_) ProcessRecord(queue_[cursor_]);
    CloseWorkQueue();
    for (std::size_t i = 1; i < queue_.size(); ++i) ReportEmbedded(run_.state, queue_[i]);
    return queue_.front().outcome;
  }

 private:
  void ProcessRecord(ItemWorkRecord& record) {
    run_.context.control.PausePoint();
    engine::ContentAllowance& allowance = run_.state.allowance;
    if (allowance.BytesSpent()) {
      record.outcome.skip = SkipReason::kNoBlock;
      record.outcome.failure = TooMuchClaimed();
      return;
    }
    MessageSubNodes subNodes;
    subNodes.entries = ReadSubNodeList(run_.store, record.bidSub);
    subNodes.unread = ReadUnreadSubNodes(run_, record.bidSub, subNodes.entries);
    if (!engine::BlockReader(run_.store).FindBlockOrLower(record.bidData)) {
      record.outcome.skip = SkipReason::kNoBlock;
      record.outcome.failure = BlockNotFound(record.bidData);
      return;
    }
    ParsedMessage message;
    const bool whole = WithinFrame([&] {
      const bool bodyInBounds = ProcessMessage(record, message, subNodes.entries);
      // Only now, since a long list must not take what the message itself may.
      allowance.TakeBytes(subNodes.entries.size() * sizeof(SubNodeEntry));
      if (bodyInBounds) HandleAttachments(record, message, subNodes);
      if (!bodyInBounds) ReportUntried(record, subNodes, u"the body of its message is out of bounds");
    });
    if (!whole) ReportUntried(record, subNodes, u"an operation on its message failed");
    ReportItemLosses(run_, record, message, subNodes);
  }

  /// False only when an in-line body was out of bounds; true: the attachments come next.
  bool ProcessMessage(ItemWorkRecord& record, ParsedMessage& message, const SubNodeList& subNodes) {
    message = ParseMessage(run_, record.bidData, subNodes, place_, left_);
    record.outcome = message.outcome;
    record.createdItem = message.items.createdMail;
    // The other kinds carry their body through their own converters.
    if (!message.items.IsKind(ItemKind::kMail)) return true;
    Body body = ReadBody(run_.Values(), message.block, message.body, subNodes);
    for (Body::Write& write : body.writes) {
      const Ref<RDOMail>& mail = message.items.Item(ItemKind::kMail);
      if (write.field == output::Field::HTMLBody) mail->PutBytes(write.field, write.bytes);
      if (write.field != output::Field::HTMLBody) mail->Put(write.field, std::move(write.text));
    }
    message.losses.bodyTaken = body.taken;
    message.losses.bodyMissing = std::move(body.missing);
    return body.inBounds;
  }

  void HandleAttachments(ItemWorkRecord& record, const ParsedMessage& message, MessageSubNodes& subNodes) {
    if (subNodes.entries.empty()) return;
    if (!message.items.Item(ItemKind::kMail)) {
      if (record.outcome.saved) ReportUntried(record, subNodes, u"an item of its kind takes none");
      return;
    }
    if (subNodes.entries.front().nid != Value(nid::kAttachmentTable)) {
      return ReportUntried(record, subNodes, u"the message does not begin with an attachment table");
    }

    engine::ContentAllowance& allowance = run_.state.allowance;
    AttachmentReader reader(run_.Values());
    bool listed = false;
    for (const SubNodeEntry& entry : subNodes.entries) {
      run_.context.control.PausePoint();
      if (allowance.BytesSpent() || !allowance.TakePart()) {
        ReportUntried(record, subNodes, kClaimsTooMuch);
        break;
      }
      const auto block = engine::BlockReader(run_.store).FindBlockOrLower(entry.bidData);
      Attachment attachment;
      if (block) {
        attachment = reader.ReadAttachment(entry, *block);
        LogFileName(attachment);
        listed |= attachment.outOfLine;
        Attach(entry.nid, message.items, attachment);
        NameLastRecord(attachment);
      } else {
        attachment.missing = ReasonOf(BlockNotFound(entry.bidData));
      }
      ++subNodes.tried;
      // What is no attachment by its identifier and by its block alike is no loss: the tables stand among them.
      const bool isAttachment = attachment.isRecord || HasNidType(entry.nid, NidType::kAttachment);
      if (isAttachment && !attachment.missing.empty()) {
        ReportAttachment(run_.state, record, entry, attachment.missing);
      }
    }
    if (listed) run_.context.Say(engine::AttachmentsListed{});
  }

  /// Hands over what was read: to the queue, to the mail, or, where the classes of a damaged message contradict each
  /// other, to the contact that it is as well. `missing` gets why nothing was handed over.
  void Attach(std::uint32_t nid, const MessageItems& items, Attachment& attachment) {
    const auto& mail = items.Item(ItemKind::kMail);
    const auto& content = attachment.content;
    const bool queued = attachment.message && QueueEmbedded(nid, mail, *attachment.message);
    if (attachment.message && !queued) attachment.missing = u"messages within messages have no end here";
    if (attachment.outOfLine && items.IsKind(ItemKind::kContact)) {
      const auto& contact = items.Item(ItemKind::kContact);
      const bool taken = content && !content->Failed();
      if (taken) {
        contact->AddPicture(*content);
        ++run_.state.report.attachments;
      }
      contact->Save();
      if (!taken && !queued && attachment.missing.empty()) attachment.missing = kNoFileName;
    } else if (content && attachment.name.empty()) {
      attachment.missing = kNoFileName;
    } else if (content && content->Failed()) {
      attachment.missing = u"its content could not be kept";
    } else if (content) {
      mail->Attachments()->Add(*content, attachment.name);
      ++run_.state.report.attachments;
    }
  }

  /// False when there is no end to it. The record stands in the queue before the first write, which may fail.
  bool QueueEmbedded(std::uint32_t nid, const Ref<RDOMail>& mail, const std::vector<EmbeddedSlot>& slots) {
    ItemWorkRecord& record = queue_.emplace_back();
    record.nid = nid;
    record.parent = cursor_;
    for (const EmbeddedSlot& slot : slots) {
      record.bidData = slot.bidData;
      record.bidSub = slot.bidSub;
      mail->Put(output::Field::Sent, true);
      record.parentItem = mail;
    }
    if (HasEnd(record)) return true;
    queue_.pop_back();
    return false;
  }

  /// A message that would be embedded in itself has no end, and one behind very many others no sense.
  bool HasEnd(const ItemWorkRecord& record) const {
    int depth = 0;
    for (std::optional<std::size_t> at = record.parent; at; at = queue_[*at].parent) {
      const ItemWorkRecord& ancestor = queue_[*at];
      if (ancestor.bidData == record.bidData && ancestor.bidSub == record.bidSub) return false;
      if (++depth > kDeepestEmbedding) return false;
    }
    return true;
  }

  void LogFileName(const Attachment& attachment) const {
    if (!attachment.loggedName || run_.context.log == nullptr) return;
    run_.context.Log(u"\r\n");
    run_.context.Log(u"Attachment File Name: ");
    run_.context.Log(*attachment.loggedName);
  }

  void NameLastRecord(const Attachment& attachment) {
    const text::Text& name = attachment.embeddedName;
    if (name.empty()) return;
    if (run_.state.allowance.TakeHeld(2 * name.size())) queue_.back().attachmentName = name;
    if (attachment.loggedName || run_.context.log == nullptr) return;
    run_.context.Log(u"\r\n");
    run_.context.Log(u"Attached Embedded Message: ");
    run_.context.Log(name);
  }

  void ReportUntried(const ItemWorkRecord& record, const MessageSubNodes& subNodes, text::TextView reason) {
    ReportUntriedAttachments(run_.state, record, subNodes, reason);
  }

  void CloseWorkQueue() {
    Ref<RDOMail> lastParent = queue_.back().parentItem;
    for (ItemWorkRecord& record : std::views::reverse(queue_)) {
      if (record.parentItem && record.createdItem) {
        record.parentItem->Attachments()->Add(record.createdItem, record.attachmentName);
        record.parentItem->Save();
        record.outcome.saved = true;
        ++run_.state.report.embedded;
      }
      if (lastParent && record.parentItem && !(lastParent == record.parentItem)) lastParent->Delete();
      lastParent = record.parentItem;
    }

    ItemWorkRecord& first = queue_.front();
    if (!first.createdItem) return;
    first.createdItem->Save();
    first.outcome.saved = true;
    run_.context.Log(u"\r\n");
    run_.context.Log(u"Status: Recovered\r\n");
  }

  const RecoveryRun& run_;
  const MessagePlace& place_;
  LeftByTheItemBefore& left_;
  WorkQueue queue_;
  std::size_t cursor_ = 0;  ///< the record under work
};

}  // namespace

ItemOutcome ProcessNode(const RecoveryRun& run, const NodeBlocks& node, const MessagePlace& place,
                        LeftByTheItemBefore& left) {
  run.state.allowance.BeginNode();
  return WorkQueueRun(run, node, place, left).Process();
}

}  // namespace velmora::recovery
