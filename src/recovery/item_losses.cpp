#include "recovery/item_losses.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "recovery/catching_frame.h"
#include "recovery/lost_items.h"
#include "recovery/property_context.h"
#include "recovery/value_stream.h"

namespace velmora::recovery {
namespace {

using output::Field;
using text::Text;

constexpr text::TextView kBodyNames[kBodyKinds] = {u"HTML", u"plain text", u"RTF"};

class ItemLosses {
 public:
  explicit ItemLosses(ItemRun& items) : items_(items), losses_(items.message.losses) {}

  void Report() {
    ReportBody();
    ReportSubject();
    for (const LostValue& value : losses_.values) ReportValue(value);
    if (losses_.members) ReportMembers(*losses_.members);
    ReportUnreadAttachments();
  }

 private:
  void Tell(LossKind kind, Text reason) {
    const ItemWorkRecord& record = items_.Current();
    ReportLoss(items_.state, {kind, record.nid, record.bidData, ToldText(items_.state, record.outcome.messageClass),
                              std::move(reason)});
  }

  output::Ref<output::RDOMail> Item() const {
    const auto kind = std::ranges::find(items_.message.kindSet, true) - items_.message.kindSet.begin();
    return kind == kItemKinds ? nullptr : items_.message.items[kind];
  }

  /// Data block of the sub-node that holds a value; 0 when the lists do not name it.
  std::uint32_t BlockOf(std::uint32_t nid) {
    if (blockOfNid_.empty()) {
      for (const SubNodeEntry& entry : items_.subNodes) blockOfNid_.try_emplace(entry.nid, entry.bidData);
      for (const SubNodeEntry& entry : items_.unread.entries) blockOfNid_.try_emplace(entry.nid, entry.bidData);
    }
    const auto found = blockOfNid_.find(nid);
    return found == blockOfNid_.end() ? 0 : found->second;
  }

  /// The bytes of a value; `head` gets the first four of them.
  std::optional<std::uint64_t> SizeOf(const NotedRecord& noted, std::uint32_t* head = nullptr) {
    if (head != nullptr) *head = noted.head;
    if (noted.size || !IsSubNodeValue(noted.record.value)) return noted.size;
    auto block = items_.blocks.FindBlockOrLower(BlockOf(noted.record.value));
    if (!block) return std::nullopt;
    ContentAllowance& allowance = items_.state.reportAllowance;
    std::optional<std::uint64_t> total;
    if (IsInternalBid(block->bid)) {
      BlockChain chain;
      BuildBlockChain(items_.engine, *block, allowance, chain);
      total = chain.total;
      if (head == nullptr || chain.pieces.empty()) return total;
      block = items_.blocks.FindBlock(chain.pieces.front());
      if (!block) return total;
    }
    const auto data = ReadDataBlock(items_.engine, *block, block->bid, allowance);
    if (!data) return total;
    if (head != nullptr) *head = ByteView(data->bytes).U32(0);
    return total.value_or(data->bytes.size());
  }

  Text SizeText(const NotedRecord& noted) {
    const auto size = SizeOf(noted);
    if (size) return DecimalOf(*size) + u" bytes";
    const std::uint32_t bid = IsSubNodeValue(noted.record.value) ? BlockOf(noted.record.value) : 0;
    return bid == 0 ? u"unknown size" : u"unknown size, since " + TextOf(BlockFault::NotFound(bid));
  }

  void ReportBody() {
    if (losses_.bodyTaken) {
      if (losses_.bodyMissing.empty()) return;
      return Tell(LossKind::kBody, u"body (" + Text(kBodyNames[*losses_.bodyTaken]) + u"): " + losses_.bodyMissing);
    }
    const bool taken = !items_.message.IsKind(ItemKind::kMail) && !Item()->Get(Field::Body).AsText().empty();
    if (taken) return;
    Text found;
    for (std::size_t kind = 0; kind < kBodyKinds; ++kind) {
      if (!losses_.bodies[kind] || SizeOf(*losses_.bodies[kind]) == 0) continue;
      found += (found.empty() ? u"" : u"; ") + Text(kBodyNames[kind]) + u" of " + SizeText(*losses_.bodies[kind]);
    }
    if (found.empty()) return;
    const Text why = items_.unread.why.empty() ? Text() : u"; " + items_.unread.why;
    Tell(LossKind::kBody, u"body: none is read of " + found + why);
  }

  /// The new store cuts it. Two characters ahead of it, that tell how long its prefix is, do not count.
  void ReportSubject() {
    const Text subject = Item()->Get(Field::Subject).AsText();
    const std::size_t length =
        subject.size() - (subject.starts_with(u'\x01') ? std::min<std::size_t>(2, subject.size()) : 0);
    if (length <= output::kLongestSubject) return;
    Tell(LossKind::kText,
         u"Subject: cut to " + DecimalOf(output::kLongestSubject) + u" of " + DecimalOf(length) + u" characters");
  }

  void ReportValue(const LostValue& value) {
    const bool isAddress = value.field == Field::To || value.field == Field::CC || value.field == Field::SenderName;
    Text reason = text::FromUtf8(output::InfoOf(value.field).name);
    if (!value.reason.empty()) {
      reason += u": " + value.reason;
    } else if (IsInlineType(value.value.record.type)) {
      // The new store forms this one from start and end.
      if (value.field == Field::AppointmentDuration) return;
      reason += u": its value " + DecimalOf(value.value.record.value) + u" is not taken";
    } else {
      reason += u": a value of " + SizeText(value.value) + u" outside the message's own block is not read";
    }
    Tell(isAddress ? LossKind::kRecipients : LossKind::kText, std::move(reason));
  }

  static bool IsInlineType(std::uint16_t type) {
    return type == kTypeBoolean || type == kTypeShort || type == kTypeLong;
  }

  /// A list of values begins with their number.
  void ReportMembers(const NotedRecord& list) {
    std::uint32_t count = 0;
    const auto size = SizeOf(list, &count);
    if (size && count == 0) return;
    if (!size) return Tell(LossKind::kMembers, u"members, number unknown, are not converted");
    Tell(LossKind::kMembers,
         DecimalOf(count) + (count == 1 ? u" member is not converted" : u" members are not converted"));
  }

  void ReportUnreadAttachments() {
    if (items_.unread.why.empty()) return;
    bool known = false;
    for (const SubNodeEntry& entry : items_.unread.entries) {
      if ((entry.nid & kNidTypeMask) != kNidTypeAttachment) continue;
      ReportAttachment(items_, entry, items_.unread.why);
      known = true;
    }
    if (known || !losses_.hasAttachments) return;
    const ItemWorkRecord& record = items_.Current();
    ReportLoss(items_.state, {LossKind::kAttachment,
                              record.nid,
                              record.bidSub,
                              {},
                              u"attachments of " + MessageNameOf(record) + u", number unknown: " + items_.unread.why});
  }

  ItemRun& items_;
  const MessageLosses& losses_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfNid_;  ///< made at the first question
};

}  // namespace

void ReportItemLosses(ItemRun& items) {
  const ItemOutcome& outcome = items.Current().outcome;
  const bool hasItem = outcome.saved || static_cast<bool>(items.Current().createdItem);
  const bool hasKind = std::ranges::count(items.message.kindSet, true) != 0;
  if (hasItem && hasKind) WithinFrame([&] { ItemLosses(items).Report(); });
}

}  // namespace velmora::recovery
