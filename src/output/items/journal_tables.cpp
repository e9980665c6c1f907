// Journal entries. The end time has no row.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FlagRow kJournalFlags[] = {
  {kBoolean, 0x8711, DocPosted},
  {kBoolean, 0x870E, DocPrinted},
  {kBoolean, 0x8710, DocRouted},
  {kBoolean, 0x870F, DocSaved},
  {kInteger32,    0x8707, JournalDuration},
};

constexpr FieldRow kJournalFields[] = {
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
  {0x8530, FlagRequest,                kText},
  {0x8539, Companies,                  kText},
  {0x8700, JournalType,                kText},
  {0x8706, JournalStart,               kDate},
};
// clang-format on

static_assert(IsSound(std::span<const FlagRow>(kJournalFlags)));
static_assert(IsSound(std::span<const FieldRow>(kJournalFields)));

}  // namespace

constexpr KindTables kJournalTables{recovery::ItemKind::kJournal, kJournalFlags, kJournalFields};

}  // namespace velmora::items
