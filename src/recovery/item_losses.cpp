#include "recovery/item_losses.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "engine/block_reader.h"
#include "recovery/catching_frame.h"
#include "recovery/lost_items.h"
#include "recovery/property_context.h"
#include "recovery/value_stream.h"
#include "store/format/block.h"

namespace velmora::recovery {
namespace {

using output::Field;
using text::Text;

constexpr text::TextView kBodyNames[kBodyKinds] = {u"HTML", u"plain text", u"RTF"};

class ItemLosses {
 public:
  ItemLosses(const RecoveryRun& run, const ItemWorkRecord& record, const ParsedMessage& message,
             const MessageSubNodes& subNodes)
      : run_(run),
        record_(record),
        item_(message.items.Item(*message.items.Kind())),
        isMail_(message.items.IsKind(ItemKind::kMail)),
        losses_(message.losses),
        subNodes_(subNodes) {}

  void Report() {
    ReportBody();
    ReportSubject();
    for (const LostField& lost : losses_.fields) ReportField(lost);
    if (losses_.members) ReportMembers(*losses_.members);
    ReportUnreadAttachments();
  }

 private:
  void List(LossKind kind, Text reason) {
    ReportLoss(run_.state, {kind, record_.nid, record_.bidData, ReportText(run_.state, record_.outcome.messageClass),
                            std::move(reason)});
  }

  /// Data block of the sub-node that holds a value; 0 when the lists do not name it.
  std::uint32_t BlockOf(std::uint32_t nid) {
    if (blockOfNid_.empty()) {
      for (const SubNodeEntry& entry : subNodes_.entries) blockOfNid_.try_emplace(entry.nid, entry.bidData);
      for (const SubNodeEntry& entry : subNodes_.unread.entries) blockOfNid_.try_emplace(entry.nid, entry.bidData);
    }
    const auto found = blockOfNid_.find(nid);
    return found == blockOfNid_.end() ? 0 : found->second;
  }

  /// The bytes of a value; `head` gets the first four of them.
  std::optional<std::uint64_t> SizeOf(const ReportedRecord& reported, std::uint32_t* head = nullptr) {
    if (head != nullptr) *head = reported.head;
    if (reported.size || !IsSubNodeValue(reported.dwValueHnid)) return reported.size;
    auto block = engine::BlockReader(run_.store).FindBlockOrLower(BlockOf(reported.dwValueHnid));
    if (!block) return std::nullopt;
    engine::ContentAllowance& allowance = run_.state.reportAllowance;
    std::optional<std::uint64_t> total;
    if (IsInternalBid(block->bid)) {
      BlockChain chain;
      BuildBlockChain(run_.store, *block, allowance, chain);
      total = chain.total;
      if (head == nullptr || chain.pieces.empty()) return total;
      block = engine::BlockReader(run_.store).FindBlock(chain.pieces.front());
      if (!block) return total;
    }
    const auto data = ReadDataBlock(run_.store, *block, block->bid, allowance);
    if (!data) return total;
    if (head != nullptr) *head = ByteView(data->bytes).U32(0);
    return total.value_or(data->bytes.size());
  }

  Text SizeText(const ReportedRecord& reported) {
    const auto size = SizeOf(reported);
    if (size) return DecimalOf(*size) + u" bytes";
    const std::uint32_t bid = IsSubNodeValue(reported.dwValueHnid) ? BlockOf(reported.dwValueHnid) : 0;
    return bid == 0 ? u"unknown size" : u"unknown size, since " + ReasonOf(BlockNotFound(bid));
  }

  void ReportBody() {
    if (losses_.bodyTaken) {
      if (losses_.bodyMissing.empty()) return;
      return List(LossKind::kBody, u"body (" + Text(kBodyNames[*losses_.bodyTaken]) + u"): " + losses_.bodyMissing);
    }
    const bool taken = !isMail_ && !item_->Get(Field::Body).AsText().empty();
    if (taken) return;
    Text found;
    for (std::size_t kind = 0; kind < kBodyKinds; ++kind) {
      if (!losses_.bodies[kind] || SizeOf(*losses_.bodies[kind]) == 0) continue;
      found += (found.empty() ? u"" : u"; ") + Text(kBodyNames[kind]) + u" of " + SizeText(*losses_.bodies[kind]);
    }
    if (found.empty()) return;
    const Text why = subNodes_.unread.failure ? u"; " + ReasonOf(*subNodes_.unread.failure) : Text();
    List(LossKind::kBody, u"body: none is read of " + found + why);
  }

  /// The new store cuts it. Two characters ahead of it, which give the length of its prefix, do not count.
  void ReportSubject() {
    const Text subject = item_->Get(Field::Subject).AsText();
    const std::size_t length =
        subject.size() - (subject.starts_with(u'\x01') ? std::min<std::size_t>(2, subject.size()) : 0);
    if (length <= output::kLongestSubject) return;
    List(LossKind::kText,
         u"Subject: cut to " + DecimalOf(output::kLongestSubject) + u" of " + DecimalOf(length) + u" characters");
  }

  void ReportField(const LostField& lost) {
    const bool isAddress = lost.field == Field::To || lost.field == Field::CC || lost.field == Field::SenderName;
    Text reason = text::FromUtf8(output::InfoOf(lost.field).name);
    if (!lost.reason.empty()) {
      reason += u": " + lost.reason;
    } else if (IsNumberType(lost.record.wPropType)) {
      // The new store forms this one from start and end.
      if (lost.field == Field::AppointmentDuration) return;
      reason += u": its value " + DecimalOf(lost.record.dwValueHnid) + u" is not taken";
    } else {
      reason += u": a value of " + SizeText(lost.record) + u" outside the message's own block is not read";
    }
    List(isAddress ? LossKind::kRecipients : LossKind::kText, std::move(reason));
  }

  /// A list of values begins with their number.
  void ReportMembers(const ReportedRecord& list) {
    std::uint32_t count = 0;
    const auto size = SizeOf(list, &count);
    if (size && count == 0) return;
    if (!size) return List(LossKind::kMembers, u"members, number unknown, are not converted");
    List(LossKind::kMembers,
         DecimalOf(count) + (count == 1 ? u" member is not converted" : u" members are not converted"));
  }

  void ReportUnreadAttachments() {
    if (!subNodes_.unread.failure) return;
    const Text why = ReasonOf(*subNodes_.unread.failure);
    bool known = false;
    for (const SubNodeEntry& entry : subNodes_.unread.entries) {
      if (!HasNidType(entry.nid, NidType::kAttachment)) continue;
      ReportAttachment(run_.state, record_, entry, why);
      known = true;
    }
    if (known || !losses_.hasAttachments) return;
    ReportLoss(run_.state, {LossKind::kAttachment,
                            record_.nid,
                            record_.bidSub,
                            {},
                            u"attachments of " + MessageNameOf(record_) + u", number unknown: " + why});
  }

  const RecoveryRun& run_;
  const ItemWorkRecord& record_;
  const output::Ref<output::RDOMail>& item_;
  const bool isMail_;
  const MessageLosses& losses_;
  const MessageSubNodes& subNodes_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfNid_;  ///< made at the first question
};

}  // namespace

UnreadSubNodes ReadUnreadSubNodes(const RecoveryRun& run, std::uint32_t bidSub, const SubNodeList& read) {
  // A list of several entries is one: an upper level never looks like that.
  if (bidSub == 0 || read.size() > 1) return {};
  const engine::BlockReader blocks(run.store);
  const auto record = blocks.FindBlockOrLower(bidSub);
  if (!record) return {{}, BlockNotFound(bidSub)};
  const bool allowed = run.state.reportAllowance.TakeBytes(record->size);
  const auto bytes = allowed ? blocks.ReadChunk(record->offset, record->size) : std::nullopt;
  if (!bytes) return {{}, BlockNotRead(*record)};

  const ByteView block(*bytes);
  const Generation& layout = run.store.layout;
  if (block.U16(0) != kSiBlock) {
    if (block.U16(2) * layout.SubnodeEntrySize() <= block.Size()) return {};
    Failure overfull = BlockFailure(FailureKind::kCorrupt, *record, "claims more entries than it can hold");
    overfull.offset.reset();  // the report never gave it
    return {{}, std::move(overfull)};
  }
  UnreadSubNodes unread{
      {}, PlainFailure(FailureKind::kNotSupported, "the list of its sub-nodes has an upper level, which is not read")};
  const std::uint32_t width = layout.idWidth;  // an entry is a sub-node and the block that lists those from it on
  const std::uint64_t count = block.U16(2);
  for (std::uint64_t at = width; at < width * (1 + 2 * count) && at < block.Size(); at += 2ull * width) {
    const auto leaf = blocks.FindBlockOrLower(block.U32(at + width));
    if (!leaf || !run.state.reportAllowance.TakeBytes(leaf->size)) continue;
    const SubNodeList entries = ReadSubNodeList(run.store, leaf->bid);
    unread.entries.insert(unread.entries.end(), entries.begin(), entries.end());
  }
  return unread;
}

void ReportUntriedAttachments(RecoveryState& state, const ItemWorkRecord& record, const MessageSubNodes& subNodes,
                              text::TextView reason) {
  for (std::size_t i = subNodes.tried; i < subNodes.entries.size(); ++i) {
    const SubNodeEntry& entry = subNodes.entries[i];
    if (HasNidType(entry.nid, NidType::kAttachment)) ReportAttachment(state, record, entry, reason);
  }
}

void ReportItemLosses(const RecoveryRun& run, const ItemWorkRecord& record, const ParsedMessage& message,
                      const MessageSubNodes& subNodes) {
  const bool hasItem = record.outcome.saved || static_cast<bool>(record.createdItem);
  if (hasItem && message.items.Kind()) WithinFrame([&] { ItemLosses(run, record, message, subNodes).Report(); });
}

}  // namespace velmora::recovery
