// Appointments and meeting messages: start and end stand in all places by which calendars look for them.
#include <algorithm>
#include <optional>

#include "store/format/property_tags.h"
#include "store/messaging/items/item_properties.h"
#include "store/messaging/tables/named_properties.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;

constexpr PropTag kAppointmentStart = Named(kAppointment, 0x820D, PropType::kTime);
constexpr PropTag kAppointmentEnd = Named(kAppointment, 0x820E, PropType::kTime);
constexpr PropTag kDuration = Named(kAppointment, 0x8213, PropType::kInteger32);
constexpr PropTag kMeetingStatus = Named(kAppointment, 0x8217, PropType::kInteger32);
constexpr PropTag kResponseStatus = Named(kAppointment, 0x8218, PropType::kInteger32);
constexpr PropTag kAppointmentRecurs = Named(kAppointment, 0x8223, PropType::kBoolean);
constexpr PropTag kReminderMinutes = Named(kCommon, 0x8501, PropType::kInteger32);

constexpr std::int32_t kMinutesPerDay = 1440;
constexpr std::int32_t kLongestDuration = 100 * 366 * kMinutesPerDay;  // a century; beyond lies damage
constexpr std::int32_t kAppointmentSideEffects = 0x171;

struct IconRow {
  text::TextView ending;  ///< of the message class
  std::int32_t icon;
};

constexpr IconRow kIcons[] = {
    {u".Appointment", 0x400},      {u".Meeting.Request", 0x404},   {u".Meeting.Resp.Pos", 0x405},
    {u".Meeting.Resp.Neg", 0x406}, {u".Meeting.Resp.Tent", 0x407}, {u".Meeting.Canceled", 0x408},
};

struct Span {
  text::FileTime start = 0;
  text::FileTime end = 0;
};

/// Start and end, the missing one taken from the duration; nothing when neither is known.
std::optional<Span> SpanOf(const ItemFields& fields) {
  const auto start = fields.Time(Field::AppointmentStart);
  const auto end = fields.Time(Field::End);
  if (!start && !end) return std::nullopt;
  if (start && end) return Span{*start, *end};
  const bool allDay = fields.Flag(Field::AllDayEvent).value_or(false);
  const std::int32_t minutes = fields.Number(Field::AppointmentDuration).value_or(allDay ? kMinutesPerDay : 0);
  const text::FileTime length =
      minutes > 0 && minutes <= kLongestDuration ? static_cast<text::FileTime>(minutes) * text::kTicksPerMinute : 0;
  if (start) return Span{*start, std::min(*start + length, text::kNoDate)};
  return Span{*end > length ? *end - length : *end, *end};
}

std::int32_t MinutesBetween(text::FileTime from, text::FileTime to) {
  const text::FileTime minutes = to > from ? (to - from) / text::kTicksPerMinute : 0;
  return minutes <= static_cast<text::FileTime>(kLongestDuration) ? static_cast<std::int32_t>(minutes) : 0;
}

void PutSpan(const ItemFields& fields, PropertyBag& bag) {
  const auto span = SpanOf(fields);
  if (!span) return;
  for (const PropTag start : {kAppointmentStart, kCommonStart, tag::kStartDate}) bag.PutTime(start, span->start);
  for (const PropTag end : {kAppointmentEnd, kCommonEnd, tag::kEndDate}) bag.PutTime(end, span->end);
  if (!bag.Has(kDuration)) bag.PutInteger32(kDuration, MinutesBetween(span->start, span->end));
  if (const auto signal = fields.Time(Field::ReminderSignalTime)) {
    bag.PutInteger32(kReminderMinutes, MinutesBetween(*signal, span->start));
  }
}

}  // namespace

void CompleteAppointment(const ItemState& item, PropertyBag& bag) {
  PutSpan(item.fields, bag);
  for (const IconRow& row : kIcons) {
    if (item.messageClass.ends_with(row.ending)) bag.PutInteger32(tag::kIconIndex, row.icon);
  }
  if (!item.messageClass.ends_with(kIcons[0].ending)) return;
  // Without these a calendar takes the item for a part of a series or of a meeting.
  bag.PutBoolean(kAppointmentRecurs, false);
  bag.PutInteger32(kMeetingStatus, 0);
  bag.PutInteger32(kResponseStatus, 0);
  bag.PutInteger32(kSideEffects, kAppointmentSideEffects);
}

}  // namespace velmora::messaging
