#include <algorithm>
#include <utility>

#include "recovery/catching_frame.h"
#include "recovery/heap_text.h"
#include "recovery/item_steps.h"
#include "recovery/lost_items.h"
#include "recovery/message_classes.h"
#include "recovery/property_context.h"
#include "recovery/property_ids.h"
#include "recovery/sub_node_text.h"

namespace velmora::recovery {

using output::Field;

namespace {

constexpr text::TextView kSpentOnRow = u"it was spent on the item list, since the mail has no To that is read";

/// The walk over the records of one message.
class MessageWalk {
 public:
  MessageWalk(ItemRun& items, const PropertyContext& context, std::uint32_t folderNid)
      : items_(items),
        message_(items.message),
        context_(context),
        folderNid_(folderNid),
        subNodeText_(items.engine, items.subNodes, items.message.block.bytes, *items.state.codePage,
                     items.state.allowance) {
    scope_.storeKind = items.engine.storeKind;
    scope_.wideFormat = items.engine.layout.wideFormat;
    scope_.codePage = items.state.codePage;
    scope_.namedProps = &items.state.namedProps;
    scope_.run = &items.run;
    scope_.subNodes = &subNodeText_;
    scope_.mail = &message_.mail;
    scope_.currentFolderName = items.state.currentFolderName;
  }

  /// False when a class record out of bounds ended the message at once. Raises what creating the item and the
  /// mail converter raise.
  bool Walk() {
    for (std::uint32_t index = 0; index < context_.Count(); ++index) {
      const PropertyRecord record = context_.Record(index);
      if (record.id == kMessageClassId && !HandleClass(record.value)) return false;
      KeepSeenValue(record);
      const bool rowWasShown = message_.mail.subjectShown;
      const bool taken = TakeText(record);
      if (taken) HandToKind(record);
      const bool spent = !rowWasShown && message_.mail.subjectShown;
      NoteLoss(record, !taken ? kClaimsTooMuch : spent ? kSpentOnRow : text::TextView());
    }
    return true;
  }

 private:
  /// Does the place that the value names in the page map lie in the block?
  bool InBounds(std::uint32_t value) const {
    return std::uint64_t{message_.block.Position(value)} + 4 <= message_.block.bytes.Size();
  }

  /// The text of an allocation; empty when there is none. Identifier 0 names none.
  text::Text ReadText(std::uint32_t value) const {
    const auto range = RangeOf(message_.block.bytes, message_.block.heapPageMapOffset, value, EmptyEnd::kRefused);
    if (!range || value == 0) return {};
    return CopyHeapText(range->In(message_.block.bytes), scope_.wideFormat, *scope_.codePage);
  }

  /// An item for each class record: a sound message has one.
  bool HandleClass(std::uint32_t value) {
    if (!InBounds(value)) return false;
    if (classSeen_ && !items_.state.allowance.TakePart()) return false;
    classSeen_ = true;
    const text::Text messageClass = ReadText(value);
    ItemOutcome& outcome = items_.Current().outcome;
    outcome.messageClass = messageClass;
    const ClassVerdict verdict = Classify(messageClass).verdict;
    outcome.skip = verdict == ClassVerdict::kRefused ? SkipReason::kRefusedClass : SkipReason::kNoFolder;

    if (items_.state.inOrphanPhase) {
      outcome.skip.reset();
      const bool created = CreateItemForClass(items_, messageClass);
      if (!created && !message_.classRefused) CreateFallbackMail(items_);
    } else if (PlaceMessage(items_, messageClass, folderNid_)) {
      outcome.skip.reset();
      scope_.currentFolderName = items_.state.currentFolderName;
      if (!CreateItemForClass(items_, messageClass)) outcome.skip = SkipReason::kNoClass;
    }
    if (verdict == ClassVerdict::kRefused) outcome.skip = SkipReason::kRefusedClass;
    return true;
  }

  /// Every record may name the same allocation, and the item keeps what it finds there. A list may also hold the
  /// same bytes in many of its values.
  bool TakeText(const PropertyRecord& record) {
    constexpr std::uint64_t kTimesInList = 16;
    const bool isList = record.type == kTypeUnicodeList || record.type == kTypeString8List;
    const bool isText = isList || record.type == kTypeUnicode || record.type == kTypeString8 ||
                        record.id == kSubjectId || record.id == kConversationTopicId;
    const auto range = ReadHeapRange(message_.block.bytes, message_.block.Position(record.value));
    if (!isText || !range) return true;
    return items_.state.allowance.TakeText(range->In(message_.block.bytes).Size() * (isList ? kTimesInList : 1));
  }

  void KeepSeenValue(const PropertyRecord& record) {
    if (!InBounds(record.value)) return;
    const auto seen = static_cast<std::uint16_t>(record.value);
    if (record.id == kSensitivityId) message_.mail.sensitivitySeen = seen;
    if (record.id == kImportanceId) message_.mail.importanceSeen = seen;
    if (record.id == kFlagIconId) message_.mail.flagIconSeen = seen;
  }

  void HandToKind(const PropertyRecord& record) {
    if (message_.IsKind(ItemKind::kMail)) return HandleMailRecord(record);
    for (std::size_t kind = 0; kind < kItemKinds; ++kind) {
      if (!message_.kindSet[kind]) continue;
      // A failing operation costs one field of an item of these kinds.
      WithinFrame([&] { Apply(kind, record); });
      return;
    }
  }

  void HandleMailRecord(const PropertyRecord& record) {
    switch (record.id) {
      case kSubjectId:
      case kConversationTopicId:
        SetSubject(record);
        break;
      case kMessageSizeId:
        message_.body.messageSize = record.value;
        break;
      case kPlainBodyId:
        FillSlot(kPlainBody, record);
        message_.body.lastValue = record.value;
        break;
      case kRtfBodyId:
        FillSlot(kRtfBody, record);
        message_.body.lastValue = record.value;
        break;
      case kHtmlBodyId:
        FillSlot(kHtmlBody, record);
        if (scope_.storeKind == engine::StoreKind::kOst) message_.body.lastValue = record.value;
        break;
      default:
        break;
    }
    if (InBounds(record.value)) Apply(static_cast<std::size_t>(ItemKind::kMail), record);
  }

  NotedRecord Note(const PropertyRecord& record) const {
    NotedRecord noted{record, {}, 0};
    if (record.value == 0) noted.size = 0;
    const auto range =
        RangeOf(message_.block.bytes, message_.block.heapPageMapOffset, record.value, EmptyEnd::kRefused);
    if (record.value == 0 || IsSubNodeValue(record.value) || !range) return noted;
    noted.size = range->end - range->start;
    noted.head = message_.block.bytes.U32(range->start);
    return noted;
  }

  /// What the report has to tell of a record that has had its turn, and `reason`, if it did not reach its field.
  void NoteLoss(const PropertyRecord& record, text::TextView reason) {
    const auto kind = std::ranges::find(message_.kindSet, true) - message_.kindSet.begin();
    if (kind == kItemKinds) return;
    MessageLosses& losses = message_.losses;
    if (record.id == kMessageFlagsId) losses.hasAttachments = (record.value & kHasAttachments) != 0;
    if (const auto body = BodyKindOf(record.id)) losses.bodies[*body] = Note(record);
    const bool isMember = scope_.namedProps->TranslateNamedId(record.id) == kMembersId;
    if (isMember && IsDistributionList(items_.Current().outcome.messageClass)) losses.members = Note(record);

    const auto field = (*items_.state.converters)[kind]->FieldOf(scope_, record);
    if (!field || BodyKindOf(record.id)) return;
    if (reason.empty() && InBounds(record.value)) return;
    losses.values.push_back({*field, Note(record), text::Text(reason)});
  }

  void SetSubject(const PropertyRecord& record) {
    if (subjectSet_) return;
    subjectSet_ = true;
    const auto& mail = message_.Item(ItemKind::kMail);
    const text::Text subject = ReadText(record.value);
    if (subject.empty() && IsSubNodeValue(record.value))
      message_.losses.values.push_back({Field::Subject, Note(record), {}});
    mail->Put(Field::Subject, subject);
    if (items_.run.log == nullptr) return;
    items_.run.Log(u"\r\n\r\n");
    items_.run.Log(u"Mail Subject: ");
    items_.run.Log(mail->Get(Field::Subject).AsText());
  }

  void FillSlot(BodyKind kind, const PropertyRecord& record) {
    message_.body.slots[kind] = {record.id, record.value, 0};
  }

  void Apply(std::size_t kind, const PropertyRecord& record) {
    (*items_.state.converters)[kind]->ApplyProperty(scope_, message_.block, record, message_.items[kind]);
  }

  ItemRun& items_;
  MessageWork& message_;
  const PropertyContext& context_;
  std::uint32_t folderNid_;
  SubNodeText subNodeText_;
  ConversionScope scope_;
  bool classSeen_ = false;
  bool subjectSet_ = false;
};

}  // namespace

void ParseMessage(ItemRun& items, std::uint32_t bidData, std::uint32_t folderNid) {
  items.message = MessageWork{};
  ItemOutcome& outcome = items.Current().outcome;

  outcome.skip = SkipReason::kNoBlock;
  outcome.fault = BlockFault::NotFound(bidData);
  const auto record = items.blocks.FindBlockOrLower(bidData);
  if (!record) return;
  outcome.skip = SkipReason::kBadHeap;
  auto bytes = ReadHeapBlock(items.engine, *record, record->bid, kMessageRules, items.state.allowance);
  if (!bytes) {
    outcome.fault = bytes.error();
    return;
  }

  MessageWork& message = items.message;
  message.readBuffer = std::move(*bytes);
  message.block.bytes = ByteView(message.readBuffer);
  message.block.record = *record;
  message.block.record.size = static_cast<std::uint32_t>(message.readBuffer.size());
  const PropertyContext context(message.block.bytes, items.engine, kMessageRules);
  outcome.fault = context.BlockFaultOf(items.engine, *record, kMessageRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) return;
  outcome.fault.reset();
  message.block.heapPageMapOffset = context.Header().ibHnpm;
  outcome.skip = SkipReason::kNoClass;

  // A failure within the walk does not undo what has been done: the item is finished with the fields it has.
  MessageWalk walk(items, context, folderNid);
  bool toTheEnd = true;
  WithinFrame([&] { toTheEnd = walk.Walk(); });
  if (toTheEnd) FinishItem(items);
}

}  // namespace velmora::recovery
