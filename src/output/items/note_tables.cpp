// Sticky notes. Their place on the screen has no row, and they have no sender.
#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;
using enum FieldSort;

// clang-format off
constexpr FlagRow kNoteFlags[] = {
  {kInteger32, 0x8B00, Color},
  {kInteger32, 0x8B02, Width},
  {kInteger32, 0x8B03, Height},
};

constexpr FieldRow kNoteFields[] = {
  {0x0037, Subject,           kText},
  {0x0070, ConversationTopic, kText},
  {0x0E06, ReceivedTime,      kDate},
  {0x1000, Body,              kText},
  {0x8012, Categories,        kText},
};
// clang-format on

static_assert(IsSound(std::span<const FlagRow>(kNoteFlags)));
static_assert(IsSound(std::span<const FieldRow>(kNoteFields)));

}  // namespace

constexpr KindTables kNoteTables{recovery::ItemKind::kNote, kNoteFlags, kNoteFields};

}  // namespace velmora::items
