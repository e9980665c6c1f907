// Sticky notes: their colour, and the first line of the text as their title.
#include "store/format/property_tags.h"
#include "store/messaging/item_properties.h"
#include "store/messaging/named_properties.h"
#include "store/messaging/stored_text.h"
#include "store/messaging/subject.h"

namespace velmora::messaging {
namespace {

using output::Field;

constexpr std::int32_t kIconOfFirstColor = 0x300;
constexpr std::int32_t kYellow = 3;
constexpr std::int32_t kLastColor = 4;
constexpr std::int32_t kNoteSideEffects = 0x110;

}  // namespace

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
