// Meeting messages: they get the fields of every item alone, no start, no end and no place.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FieldRow kMeetingFields[] = {
  {0x0037, Subject,                    kText},
  {0x0042, SentOnBehalfOfName,         kText},
  {0x0064, SentOnBehalfOfEmailType,    kText},
  {0x0065, SentOnBehalfOfEmailAddress, kText},
  {0x0070, ConversationTopic,          kText},
  {0x0C1A, SenderName,                 kText},
  {0x0C1E, SenderEmailType,            kText},
  {0x0C1F, SenderEmailAddress,         kText},
  {0x0E02, BCC,                        kText},
  {0x0E03, CC,                         kText},
  {0x0E04, To,                         kText},
  {0x0E06, ReceivedTime,               kDate},
  {0x1000, Body,                       kText},
  {0x8012, Categories,                 kText},
  {0x8502, ReminderTime,               kDate},
  {0x8530, FlagRequest,                kText},
  {0x8539, Companies,                  kText},
};
// clang-format on

static_assert(IsSound(std::span<const FieldRow>(kMeetingFields)));

}  // namespace

constexpr KindTables kMeetingTables{recovery::ItemKind::kMeeting, {}, kMeetingFields};

}  // namespace velmora::items
