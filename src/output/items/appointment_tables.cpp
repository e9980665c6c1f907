// Appointments. Recurrence and time zone have no row.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FlagRow kAppointmentFlags[] = {
  {kBoolean, 0x0063, ResponseRequested},
  {kBoolean, 0x8215, AllDayEvent},
  {kInteger32,    0x8205, BusyStatus},
  {kInteger32,    0x8213, AppointmentDuration},
};

constexpr FieldRow kAppointmentFields[] = {
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
  {0x8208, Location,                   kText},
  {0x820D, AppointmentStart,           kDate},
  {0x820E, End,                        kDate},
  {0x8502, ReminderTime,               kDate},
  {0x8530, FlagRequest,                kText},
  {0x8539, Companies,                  kText},
  {0x8560, ReminderSignalTime,         kDate},
};
// clang-format on

static_assert(IsSound(std::span<const FlagRow>(kAppointmentFlags)));
static_assert(IsSound(std::span<const FieldRow>(kAppointmentFields)));

}  // namespace

constexpr KindTables kAppointmentTables{recovery::ItemKind::kAppointment, kAppointmentFlags, kAppointmentFields};

}  // namespace velmora::items
