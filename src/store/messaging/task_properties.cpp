// Tasks: status, percentage and the completed flag agree, and dates stand where views look for them.
#include "store/format/property_tags.h"
#include "store/messaging/item_properties.h"
#include "store/messaging/named_properties.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;

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

}  // namespace velmora::messaging
