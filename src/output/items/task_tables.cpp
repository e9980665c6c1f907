// Tasks and task requests.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FlagRow kTaskFlags[] = {
  {kBoolean, 0x811C, Complete},
  {kBoolean, 0x8108, TaskAccepted},
  {kInteger32,    0x8101, Status},
};

constexpr FieldRow kTaskFields[] = {
  {0x0026, SchedulePlusPriority,       kText},
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
  {0x8104, StartDate,                  kDate},
  {0x8105, DueDate,                    kDate},
  {0x810F, DateCompleted,              kDate},
  {0x811F, Owner,                      kText},
  {0x8530, FlagRequest,                kText},
  {0x8534, Mileage,                    kText},
  {0x8535, BillingInformation,         kText},
  {0x8539, Companies,                  kText},
};
// clang-format on

static_assert(IsSound(std::span<const FlagRow>(kTaskFlags)));
static_assert(IsSound(std::span<const FieldRow>(kTaskFields)));

}  // namespace

constexpr KindTables kTaskTables{recovery::ItemKind::kTask, kTaskFlags, kTaskFields};

}  // namespace velmora::items
