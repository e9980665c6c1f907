#include "recovery/attachment_reader.h"
#include "recovery/item_steps.h"
#include "recovery/lost_items.h"
#include "recovery/property_ids.h"

namespace velmora::recovery {
namespace {

/// Messages within messages: several times what people forward to one another.
constexpr int kDeepestEmbedding = 100;

/// A message that would be embedded in itself has no end, and one behind very many others no sense.
bool HasEnd(const ItemRun& items, const ItemWorkRecord& record) {
  int depth = 0;
  for (std::optional<std::size_t> at = record.parent; at; at = items.queue[*at].parent) {
    const ItemWorkRecord& ancestor = items.queue[*at];
    if (ancestor.bidData == record.bidData && ancestor.bidSub == record.bidSub) return false;
    if (++depth > kDeepestEmbedding) return false;
  }
  return true;
}

/// An embedded message becomes a record of its own; its attachment is that message, made later. False when there is
/// no end to it.
bool QueueEmbedded(ItemRun& items, std::uint32_t nid, const std::vector<EmbeddedSlot>& slots) {
  ItemWorkRecord& record = items.queue.emplace_back();
  record.nid = nid;
  record.parent = items.cursor;
  const auto& mail = items.message.Item(ItemKind::kMail);
  for (const EmbeddedSlot& slot : slots) {
    record.bidData = slot.bidData;
    record.bidSub = slot.bidSub;
    mail->Put(output::Field::Sent, true);
    record.parentItem = mail;
  }
  if (HasEnd(items, record)) return true;
  items.queue.pop_back();
  return false;
}

/// Hands over what was read: to the queue, to the mail, or, where the classes of a damaged message contradict each
/// other, to the contact that it is as well. `missing` gets why nothing was handed over.
void Attach(ItemRun& items, std::uint32_t nid, Attachment& attachment) {
  const bool queued = attachment.message && QueueEmbedded(items, nid, *attachment.message);
  if (attachment.message && !queued) attachment.missing = kEmbeddedWithoutEnd;
  auto& content = attachment.content;
  if (attachment.outOfLine && items.message.IsKind(ItemKind::kContact)) {
    const auto& contact = items.message.Item(ItemKind::kContact);
    const bool taken = content && !content->Failed();
    if (taken) {
      contact->AddPicture(*content);
      ++items.state.report.attachments;
    }
    contact->Save();
    if (!taken && !queued && attachment.missing.empty()) attachment.missing = kNoFileName;
  } else if (content && attachment.name.empty()) {
    attachment.missing = kNoFileName;
  } else if (content && content->Failed()) {
    attachment.missing = u"its content could not be kept";
  } else if (content) {
    items.message.Item(ItemKind::kMail)->Attachments()->Add(*content, attachment.name);
    ++items.state.report.attachments;
  }
}

/// The name of an embedded message goes to the record queued last, whichever message that is
/// (docs/fidelity.md#embedded-name).
void NameLastRecord(ItemRun& items, const Attachment& attachment) {
  const text::Text& name = attachment.embeddedName;
  if (name.empty()) return;
  if (items.state.allowance.TakeHeld(2 * name.size())) items.queue.back().attachmentName = name;
  if (attachment.loggedName || items.run.log == nullptr) return;
  items.run.Log(u"\r\n");
  items.run.Log(u"Attached Embedded Message: ");
  items.run.Log(name);
}

void LogFileName(ItemRun& items, const Attachment& attachment) {
  if (!attachment.loggedName || items.run.log == nullptr) return;
  items.run.Log(u"\r\n");
  items.run.Log(u"Attachment File Name: ");
  items.run.Log(*attachment.loggedName);
}

}  // namespace

void HandleAttachments(ItemRun& items) {
  const SubNodeList& subNodes = items.subNodes;
  if (subNodes.empty()) return;
  if (!items.message.Item(ItemKind::kMail)) {
    if (items.Current().outcome.saved) ReportUntriedAttachments(items, u"an item of its kind takes none");
    return;
  }
  // The first entry alone says whether the message has attachments (docs/fidelity.md#attachment-table).
  if (subNodes.front().nid != kAttachmentTableNid) {
    return ReportUntriedAttachments(items, u"the message does not begin with an attachment table");
  }

  AttachmentReader reader({items.engine, *items.state.codePage, items.state.allowance});
  bool listed = false;
  for (const SubNodeEntry& entry : subNodes) {
    items.run.control.PausePoint();
    if (items.state.allowance.BytesSpent() || !items.state.allowance.TakePart()) {
      ReportUntriedAttachments(items, kClaimsTooMuch);
      break;
    }
    const auto record = items.blocks.FindBlockOrLower(entry.bidData);
    Attachment attachment;
    if (record) {
      attachment = reader.ReadAttachment(entry, *record);
      LogFileName(items, attachment);
      listed |= attachment.outOfLine;
      Attach(items, entry.nid, attachment);
      NameLastRecord(items, attachment);
    } else {
      attachment.missing = TextOf(BlockFault::NotFound(entry.bidData));
    }
    ++items.subNodesHandled;
    // What is no attachment by its identifier and by its block alike is no loss: the tables stand among them.
    const bool isAttachment = attachment.isRecord || (entry.nid & kNidTypeMask) == kNidTypeAttachment;
    if (isAttachment && !attachment.missing.empty()) ReportAttachment(items, entry, attachment.missing);
  }
  if (listed) items.run.Send(engine::MSG_LIST_ATTACHMENT);
}

}  // namespace velmora::recovery
