#include "recovery/message_reader.h"

#include <utility>

#include "recovery/catching_frame.h"
#include "recovery/heap_text.h"
#include "recovery/message_classes.h"
#include "recovery/property_context.h"
#include "recovery/sub_node_text.h"
#include "store/format/property_tags.h"

namespace velmora::recovery {

using output::Field;

namespace {

constexpr std::uint32_t kHasAttachments = 0x10;  ///< a message flag
constexpr std::uint32_t kMembersId = 0x8055;     ///< long id: the members of a distribution list

constexpr text::TextView kSpentOnRow = u"it was spent on the item list, since the mail has no To that is read";

/// The walk over the records of one message.
class MessageWalk {
 public:
  MessageWalk(const RecoveryRun& run, const PropertyContext& context, const SubNodeList& subNodes,
              const MessagePlace& place, LeftByTheItemBefore& left, ParsedMessage& message)
      : run_(run),
        context_(context),
        place_(place),
        left_(left),
        message_(message),
        subNodeText_(run.Values(), subNodes, message.block.bytes) {
    scope_.storeKind = run.store.storeKind;
    scope_.wideFormat = run.store.layout.wideFormat;
    scope_.codePage = run.state.codePage;
    scope_.namedProps = &run.state.namedProps;
    scope_.run = &run.context;
    scope_.subNodes = &subNodeText_;
    scope_.mail = &mail_;
    scope_.currentFolderName = left.folderName;
  }

  /// False when a class record out of bounds ended the message at once. Raises what creating the item and the
  /// mail converter raise.
  bool Walk() {
    for (std::uint32_t index = 0; index < context_.Count(); ++index) {
      const PropertyRecord record = context_.Record(index);
      if (record.wPropId == IdOf(tag::kMessageClass) && !HandleClass(record)) return false;
      KeepSeenValue(record);
      const bool rowWasShown = mail_.subjectShown;
      const bool allowed = TakeText(record);
      if (allowed) HandToKind(record);
      const bool spent = !rowWasShown && mail_.subjectShown;
      NoteLoss(record, !allowed ? kClaimsTooMuch : spent ? kSpentOnRow : text::TextView());
    }
    return true;
  }

 private:
  /// Does the place that a value names in the page map lie in the block?
  bool InBounds(const PropertyRecord& record) const {
    return std::uint64_t{message_.block.Position(record.dwValueHnid)} + 4 <= message_.block.bytes.Size();
  }

  /// The allocation that a value names. Identifier 0 names none.
  std::optional<HeapRange> AllocationOf(const PropertyRecord& record) const {
    if (record.dwValueHnid == 0) return std::nullopt;
    return RangeOf(message_.block.bytes, message_.block.heapPageMapOffset, record.dwValueHnid, EmptyEnd::kRefused);
  }

  text::Text ReadText(const PropertyRecord& record) const {
    const HeapRange range = AllocationOf(record).value_or(HeapRange{});
    return CopyHeapText(range.In(message_.block.bytes), scope_.wideFormat, *scope_.codePage);
  }

  /// An item for each class record: a sound message has one.
  bool HandleClass(const PropertyRecord& record) {
    if (!InBounds(record)) return false;
    if (classSeen_ && !run_.state.allowance.TakePart()) return false;
    classSeen_ = true;
    const text::Text messageClass = ReadText(record);
    ItemOutcome& outcome = message_.outcome;
    outcome.messageClass = messageClass;
    const bool refused = Classify(messageClass).verdict == ClassVerdict::kRefused;
    outcome.skip = refused ? SkipReason::kRefusedClass : SkipReason::kNoFolder;

    if (place_.orphanFolder) {
      outcome.skip.reset();
      const bool created = CreateItemForClass(run_.state, *place_.orphanFolder, messageClass, message_.items);
      if (!created && !message_.items.classRefused) {
        CreateFallbackMail(run_.state, *place_.orphanFolder, message_.items);
      }
    } else if (const auto placement = PlaceMessage(run_, messageClass, place_.folderNid, left_.opened)) {
      outcome.skip.reset();
      scope_.currentFolderName = left_.folderName = placement->leaf;
      const bool created = CreateItemForClass(run_.state, placement->folder, messageClass, message_.items);
      if (!created) outcome.skip = SkipReason::kNoClass;
    }
    if (refused) outcome.skip = SkipReason::kRefusedClass;
    return true;
  }

  /// Every record may name the same allocation, and the item keeps what it finds there. A list may also hold the
  /// same bytes in many of its values.
  bool TakeText(const PropertyRecord& record) {
    constexpr std::uint64_t kTimesInList = 16;
    const bool isList = record.wPropType == PropType::kMultipleString || record.wPropType == PropType::kMultipleString8;
    const bool isText = isList || record.wPropType == PropType::kString || record.wPropType == PropType::kString8 ||
                        record.wPropId == IdOf(tag::kSubject) || record.wPropId == IdOf(tag::kConversationTopic);
    const auto range = ReadHeapRange(message_.block.bytes, message_.block.Position(record.dwValueHnid));
    if (!isText || !range) return true;
    return run_.state.allowance.TakeText(range->In(message_.block.bytes).Size() * (isList ? kTimesInList : 1));
  }

  void KeepSeenValue(const PropertyRecord& record) {
    if (!InBounds(record)) return;
    const auto seen = static_cast<std::uint16_t>(record.dwValueHnid);
    if (record.wPropId == IdOf(tag::kSensitivity)) mail_.sensitivitySeen = seen;
    if (record.wPropId == IdOf(tag::kImportance)) mail_.importanceSeen = seen;
    if (record.wPropId == IdOf(tag::kFollowupIcon)) mail_.flagIconSeen = seen;
  }

  void HandToKind(const PropertyRecord& record) {
    const auto kind = message_.items.Kind();
    if (kind == ItemKind::kMail) return HandleMailRecord(record);
    // A failing operation costs one field of an item of these kinds.
    if (kind) WithinFrame([&] { Apply(*kind, record); });
  }

  void HandleMailRecord(const PropertyRecord& record) {
    if (record.wPropId == IdOf(tag::kSubject) || record.wPropId == IdOf(tag::kConversationTopic)) SetSubject(record);
    if (record.wPropId == IdOf(tag::kMessageSize)) message_.body.messageSize = record.dwValueHnid;
    if (const auto body = BodyKindOf(record.wPropId)) {
      message_.body.slots[*body] = {record.wPropId, record.dwValueHnid, 0};
      const bool decides = body != kHtmlBody || scope_.storeKind == engine::StoreKind::kOst;
      if (decides) message_.body.lastValue = record.dwValueHnid;
    }
    if (InBounds(record)) Apply(ItemKind::kMail, record);
  }

  ReportedRecord Reported(const PropertyRecord& record) const {
    ReportedRecord reported{record, {}, 0};
    if (record.dwValueHnid == 0) reported.size = 0;
    const auto range = AllocationOf(record);
    if (IsSubNodeValue(record.dwValueHnid) || !range) return reported;
    reported.size = range->end - range->start;
    reported.head = message_.block.bytes.U32(range->start);
    return reported;
  }

  /// What the report has to say of a record that has had its turn, and `reason`, if it did not reach its field.
  void NoteLoss(const PropertyRecord& record, text::TextView reason) {
    const auto kind = message_.items.Kind();
    if (!kind) return;
    MessageLosses& losses = message_.losses;
    const auto body = BodyKindOf(record.wPropId);
    if (record.wPropId == IdOf(tag::kMessageFlags)) losses.hasAttachments = (record.dwValueHnid & kHasAttachments) != 0;
    if (body) losses.bodies[*body] = Reported(record);
    const bool isMember = scope_.namedProps->TranslateNamedId(record.wPropId) == kMembersId;
    if (isMember && IsDistributionList(message_.outcome.messageClass)) losses.members = Reported(record);

    const auto field = ConverterOf(*kind).FieldOf(scope_, record);
    if (!field || body || (reason.empty() && InBounds(record))) return;
    losses.fields.push_back({*field, Reported(record), text::Text(reason)});
  }

  void SetSubject(const PropertyRecord& record) {
    if (subjectSet_) return;
    subjectSet_ = true;
    const auto& mail = message_.items.Item(ItemKind::kMail);
    const text::Text subject = ReadText(record);
    if (subject.empty() && IsSubNodeValue(record.dwValueHnid)) {
      message_.losses.fields.push_back({Field::Subject, Reported(record), {}});
    }
    mail->Put(Field::Subject, subject);
    if (run_.context.log == nullptr) return;
    run_.context.Log(u"\r\n\r\n");
    run_.context.Log(u"Mail Subject: ");
    run_.context.Log(mail->Get(Field::Subject).AsText());
  }

  ItemConverter& ConverterOf(ItemKind kind) const { return *(*run_.state.converters)[static_cast<std::size_t>(kind)]; }
  void Apply(ItemKind kind, const PropertyRecord& record) {
    ConverterOf(kind).ApplyProperty(scope_, message_.block, record, message_.items.Item(kind));
  }

  const RecoveryRun& run_;
  const PropertyContext& context_;
  const MessagePlace& place_;
  LeftByTheItemBefore& left_;
  ParsedMessage& message_;
  SubNodeText subNodeText_;
  MailState mail_;
  ConversionScope scope_;
  bool classSeen_ = false;
  bool subjectSet_ = false;
};

}  // namespace

ParsedMessage ParseMessage(const RecoveryRun& run, std::uint32_t bidData, const SubNodeList& subNodes,
                           const MessagePlace& place, LeftByTheItemBefore& left) {
  ParsedMessage message;
  ItemOutcome& outcome = message.outcome;
  outcome.skip = SkipReason::kNoBlock;
  const auto record = engine::BlockReader(run.store).FindBlockOrLower(bidData);
  if (!record) {
    outcome.failure = BlockNotFound(bidData);
    return message;
  }
  outcome.skip = SkipReason::kBadHeap;
  auto bytes = ReadHeapBlock(run.store, *record, record->bid, kMessageRules, run.state.allowance);
  if (!bytes) {
    outcome.failure = std::move(bytes.error());
    return message;
  }
  message.bytes = std::move(*bytes);
  message.block = {ByteView(message.bytes), *record, 0};
  message.block.record.size = static_cast<std::uint32_t>(message.bytes.size());
  const PropertyContext context(message.block.bytes, run.store, kMessageRules);
  if (context.GetFault() != PropertyContext::Fault::kNone) {
    outcome.failure = context.FailureOf(run.store, *record, kMessageRules);
    return message;
  }
  outcome.skip = SkipReason::kNoClass;
  message.block.heapPageMapOffset = context.Header().ibHnpm;

  // A failure within the walk does not undo what has been done: the item is finished with the fields it has.
  MessageWalk walk(run, context, subNodes, place, left, message);
  bool toTheEnd = true;
  WithinFrame([&] { toTheEnd = walk.Walk(); });
  if (!toTheEnd) return message;
  if (const auto saved = FinishItem(run, message.items)) {
    outcome.saved = *saved;
    message.bytes.clear();
    message.block.bytes = {};
  }
  return message;
}

}  // namespace velmora::recovery
