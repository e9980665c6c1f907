#include "store/ltp/property_value.h"

#include "store/format/failures.h"
#include "store/ltp/multi_value.h"

namespace velmora::ltp {
namespace {

constexpr std::uint16_t kMultipleFlag = 0x1000;

/// Bytes that the size of a value is a multiple of; 0 for a type that the store has not.
std::size_t UnitOf(PropType type) {
  switch (type) {
    case PropType::kString:
      return 2;
    case PropType::kString8:
    case PropType::kServerId:
    case PropType::kRestriction:
    case PropType::kRuleAction:
    case PropType::kBinary:
    case PropType::kMultipleString8:
    case PropType::kMultipleString:
    case PropType::kMultipleBinary:
      return 1;
    case PropType::kMultipleInteger16:
    case PropType::kMultipleInteger32:
    case PropType::kMultipleFloating32:
    case PropType::kMultipleFloating64:
    case PropType::kMultipleCurrency:
    case PropType::kMultipleFloatingTime:
    case PropType::kMultipleInteger64:
    case PropType::kMultipleTime:
    case PropType::kMultipleGuid:
      return *FixedSize(static_cast<PropType>(static_cast<std::uint16_t>(type) & ~kMultipleFlag));
    default:
      return 0;
  }
}

}  // namespace

void CheckSize(PropTag tag, std::uint64_t size) {
  const std::optional<std::size_t> fixed = FixedSize(TypeOf(tag));
  const std::size_t unit = fixed ? *fixed : UnitOf(TypeOf(tag));
  if (unit != 0 && (fixed ? size == unit : size % unit == 0)) return;
  RaiseCorrupt({ObjectKind::kProperty, tag}, size, "the value does not fit its type");
}

void CheckValue(PropTag tag, std::span<const std::byte> value) {
  CheckSize(tag, value.size());
  const PropType type = TypeOf(tag);
  const bool isList =
      type == PropType::kMultipleString || type == PropType::kMultipleString8 || type == PropType::kMultipleBinary;
  if (isList && !DecodeMultiple(value)) {
    RaiseCorrupt({ObjectKind::kProperty, tag}, value.size(), "the elements do not fit into the value");
  }
}

}  // namespace velmora::ltp
