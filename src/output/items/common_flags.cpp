#include "output/items/common_flags.h"

#include "output/items/kind_tables.h"

namespace velmora::items {
namespace {

using enum output::Field;
using enum PropType;

struct Row {
  FlagRow flag;
  bool kinds[recovery::kItemKinds - 1];
};

constexpr bool x = true;
constexpr bool o = false;

// Records in order of their ids bring 0x0002, 0x0005 and 0x0017 before the class record, when there is no item
// yet; these rows serve the messages whose records are out of order.
//
// clang-format off
constexpr Row kCommonFlags[] = {
  //                                                             contact task appointment meeting journal note
  {{kBoolean, 0x0002, AlternateRecipientAllowed},           {x,      x,   x,          x,      o,      x}},
  {{kBoolean, 0x0005, AutoForwarded},                       {x,      x,   x,          x,      o,      x}},
  {{kBoolean, 0x0023, OriginatorDeliveryReportRequested},   {x,      x,   x,          x,      x,      x}},
  {{kBoolean, 0x0029, ReadReceiptRequested},                {x,      x,   x,          x,      x,      x}},
  {{kBoolean, 0x002B, RecipientReassignmentProhibited},     {x,      x,   x,          x,      x,      x}},
  {{kBoolean, 0x0E01, DeleteAfterSubmit},                   {x,      x,   x,          x,      o,      x}},
  {{kBoolean, 0x8503, ReminderSet},                         {o,      x,   x,          x,      x,      x}},
  {{kBoolean, 0x850E, NoAging},                             {o,      x,   x,          x,      o,      o}},
  {{kBoolean, 0x851C, ReminderOverrideDefault},             {o,      x,   x,          x,      o,      o}},
  {{kInteger32,    0x0017, Importance},                          {x,      x,   x,          x,      o,      o}},
  {{kInteger32,    0x0036, Sensitivity},                         {x,      x,   x,          x,      x,      x}},
  {{kInteger32,    0x1090, FlagStatus},                          {x,      x,   x,          x,      x,      x}},
};
// clang-format on

static_assert(std::all_of(std::begin(kCommonFlags), std::end(kCommonFlags),
                          [](const Row& row) { return Fits(row.flag.type, row.flag.field); }));

}  // namespace

std::optional<output::Field> FindCommonFlag(recovery::ItemKind kind, PropType type, std::uint32_t id) {
  const auto column = static_cast<std::size_t>(kind) - static_cast<std::size_t>(recovery::ItemKind::kContact);
  for (const Row& row : kCommonFlags) {
    if (row.flag.type == type && row.flag.id == id && row.kinds[column]) return row.flag.field;
  }
  return std::nullopt;
}

}  // namespace velmora::items
