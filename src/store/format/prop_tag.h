// Property tags: id in the high 16 bits, type in the low 16.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace velmora {

using PropTag = std::uint32_t;

enum class PropType : std::uint16_t {
  kInteger16 = 0x0002,
  kInteger32 = 0x0003,
  kFloating32 = 0x0004,
  kFloating64 = 0x0005,
  kCurrency = 0x0006,
  kFloatingTime = 0x0007,
  kErrorCode = 0x000A,
  kBoolean = 0x000B,
  kObject = 0x000D,
  kInteger64 = 0x0014,
  kString8 = 0x001E,
  kString = 0x001F,
  kTime = 0x0040,
  kGuid = 0x0048,
  kServerId = 0x00FB,
  kRestriction = 0x00FD,
  kRuleAction = 0x00FE,
  kBinary = 0x0102,
  kMultipleInteger16 = 0x1002,
  kMultipleInteger32 = 0x1003,
  kMultipleFloating32 = 0x1004,
  kMultipleFloating64 = 0x1005,
  kMultipleCurrency = 0x1006,
  kMultipleFloatingTime = 0x1007,
  kMultipleInteger64 = 0x1014,
  kMultipleString8 = 0x101E,
  kMultipleString = 0x101F,
  kMultipleTime = 0x1040,
  kMultipleGuid = 0x1048,
  kMultipleBinary = 0x1102,
};

constexpr PropTag MakeTag(std::uint16_t id, PropType type) {
  return static_cast<PropTag>(id) << 16 | static_cast<std::uint16_t>(type);
}
constexpr std::uint16_t IdOf(PropTag tag) { return static_cast<std::uint16_t>(tag >> 16); }
constexpr PropType TypeOf(PropTag tag) { return static_cast<PropType>(tag & 0xFFFF); }

/// Bytes of a value of a type of fixed size (1, 2, 4, 8 or 16); nothing for types of variable size, for
/// multiple values, objects and unknown types.
constexpr std::optional<std::size_t> FixedSize(PropType type) {
  switch (type) {
    case PropType::kBoolean:
      return 1;
    case PropType::kInteger16:
      return 2;
    case PropType::kInteger32:
    case PropType::kFloating32:
    case PropType::kErrorCode:
      return 4;
    case PropType::kFloating64:
    case PropType::kCurrency:
    case PropType::kFloatingTime:
    case PropType::kInteger64:
    case PropType::kTime:
      return 8;
    case PropType::kGuid:
      return 16;
    default:
      return std::nullopt;
  }
}

/// Whether the record of the property holds the value itself: types of at most 4 bytes.
constexpr bool IsInline(PropType type) {
  const std::optional<std::size_t> size = FixedSize(type);
  return size.has_value() && *size <= 4;
}

/// The record of a property in the tree of a property context.
struct PropertyRecord {
  std::uint16_t wPropId = 0;
  PropType wPropType = PropType::kInteger32;
  std::uint32_t dwValueHnid = 0;  ///< the value itself (IsInline), a heap item or a sub-node; 0 for an empty value

  PropTag Tag() const { return MakeTag(wPropId, wPropType); }
};

inline constexpr std::size_t kPropertyKeySize = 2;
inline constexpr std::size_t kPropertyDataSize = 6;

}  // namespace velmora
