// What tasks, journal entries and notes have beside their fields.
#include <algorithm>

#include "store/format/property_tags.h"
#include "store/messaging/items/item_properties.h"
#include "store/messaging/tables/named_properties.h"
#include "store/messaging/values/stored_text.h"
#include "store/messaging/values/subject.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;

// Tasks: status, percentage and the completed flag agree.
constexpr PropTag kStatus = Named(kTask, 0x8101, PropType::kInteger32);
constexpr PropTag kPercentComplete = Named(kTask, 0x8102, PropType::kFloating64);
constexpr PropTag kTeamTask = Named(kTask, 0x8103, PropType::kBoolean);
constexpr PropTag kState = Named(kTask, 0x8113, PropType::kInteger32);
constexpr PropTag kComplete = Named(kTask, 0x811C, PropType::kBoolean);
constexpr PropTag kTaskRecurs = Named(kTask, 0x8126, PropType::kBoolean);
constexpr PropTag kOwnership = Named(kTask, 0x8129, PropType::kInteger32);
constexpr PropTag kTaskMode = Named(kCommon, 0x8518, PropType::kInteger32);

constexpr std::int32_t kNotStarted = 0;
constexpr std::int32_t kInProgress = 1;
constexpr std::int32_t kCompleted = 2;
constexpr std::int32_t kNormalState = 1;
constexpr std::int32_t kOwnTask = 0;
constexpr std::int32_t kTaskIcon = 0x500;
constexpr std::int32_t kTaskSideEffects = 0x110;

/// How far a task has come is not told; one in progress is neither at its start nor at its end.
double PercentOf(std::int32_t status) { return status == kCompleted ? 1.0 : status == kInProgress ? 0.5 : 0.0; }

// Journal entries: the end that the timeline needs, and the name of their type.
constexpr PropTag kLogEnd = Named(kLog, 0x8708, PropType::kTime);
constexpr PropTag kLogFlags = Named(kLog, 0x870C, PropType::kInteger32);
constexpr PropTag kTypeDescription = Named(kLog, 0x8712, PropType::kString);

constexpr text::TextView kPhoneCall = u"Phone call";
constexpr std::int32_t kPhoneCallIcon = 0x60A;
constexpr std::int32_t kJournalSideEffects = 0x10;

// Notes: their colour, and the first line of the text as their title.
constexpr std::int32_t kIconOfFirstColor = 0x300;
constexpr std::int32_t kYellow = 3;
constexpr std::int32_t kLastColor = 4;
constexpr std::int32_t kNoteSideEffects = 0x110;

}  // namespace

void CompleteTask(const ItemFields& fields, PropertyBag& bag) {
  std::int32_t status = fields.Number(Field::Status).value_or(kNotStarted);
  if (fields.Flag(Field::Complete).value_or(false)) status = kCompleted;
  bag.PutInteger32(kStatus, status);
  bag.PutFloating64(kPercentComplete, PercentOf(status));
  bag.PutBoolean(kComplete, status == kCompleted);
  if (const auto start = fields.Time(Field::StartDate)) bag.PutTime(kCommonStart, *start);
  if (const auto due = fields.Time(Field::DueDate)) bag.PutTime(kCommonEnd, *due);
  bag.PutBoolean(kTeamTask, false);
  bag.PutBoolean(kTaskRecurs, false);
  bag.PutInteger32(kState, kNormalState);
  bag.PutInteger32(kOwnership, kOwnTask);
  bag.PutInteger32(kTaskMode, 0);
  bag.PutInteger32(tag::kIconIndex, kTaskIcon);
  bag.PutInteger32(kSideEffects, kTaskSideEffects);
}

void CompleteJournalEntry(const ItemFields& fields, PropertyBag& bag) {
  if (const auto start = fields.Time(Field::JournalStart)) {
    const std::int32_t minutes = std::max(fields.Number(Field::JournalDuration).value_or(0), 0);
    const text::FileTime end =
        std::min(*start + static_cast<text::FileTime>(minutes) * text::kTicksPerMinute, text::kNoDate);
    bag.PutTime(kLogEnd, end);
    bag.PutTime(kCommonStart, *start);
    bag.PutTime(kCommonEnd, end);
  }
  const text::TextView type = fields.Text(Field::JournalType);
  bag.PutText(kTypeDescription, type);
  if (type == kPhoneCall) bag.PutInteger32(tag::kIconIndex, kPhoneCallIcon);
  bag.PutInteger32(kLogFlags, 0);
  bag.PutInteger32(kSideEffects, kJournalSideEffects);
}

void CompleteNote(const ItemFields& fields, PropertyBag& bag) {
  if (!bag.Has(tag::kSubject)) {
    const text::TextView body = Trimmed(fields.Text(Field::Body));
    const StoredSubject subject = StoreSubject(body.substr(0, body.find_first_of(u"\r\n")));
    bag.PutText(tag::kSubject, subject.stored);
    if (!bag.Has(tag::kConversationTopic)) bag.PutText(tag::kConversationTopic, subject.normalized);
  }
  std::int32_t color = fields.Number(Field::Color).value_or(kYellow);
  if (color < 0 || color > kLastColor) color = kYellow;
  bag.PutInteger32(tag::kIconIndex, kIconOfFirstColor + color);
  bag.PutInteger32(kSideEffects, kNoteSideEffects);
}

}  // namespace velmora::messaging
