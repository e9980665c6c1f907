// Journal entries: the end that the timeline needs, and the name of their type.
#include <algorithm>

#include "store/format/property_tags.h"
#include "store/messaging/item_properties.h"
#include "store/messaging/named_properties.h"

namespace velmora::messaging {
namespace {

using enum PropertySet;
using output::Field;

constexpr PropTag kLogEnd = Named(kLog, 0x8708, PropType::kTime);
constexpr PropTag kLogFlags = Named(kLog, 0x870C, PropType::kInteger32);
constexpr PropTag kTypeDescription = Named(kLog, 0x8712, PropType::kString);

constexpr text::TextView kPhoneCall = u"Phone call";
constexpr std::int32_t kPhoneCallIcon = 0x60A;
constexpr std::int32_t kJournalSideEffects = 0x10;

}  // namespace

void CompleteJournalEntry(const ItemFields& fields, PropertyBag& bag) {
  if (const auto start = fields.Time(Field::JournalStart)) {
    const std::int32_t minutes = std::max(fields.Number(Field::JournalDuration).value_or(0), 0);
    const FileTime end = std::min(*start + static_cast<FileTime>(minutes) * kTicksPerMinute, kNoDate);
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

}  // namespace velmora::messaging
