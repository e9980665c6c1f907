// The record of a property in the tree of a property context.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/format/prop_tag.h"

namespace velmora {

struct PropertyRecord {
  std::uint16_t wPropId = 0;
  PropType wPropType = PropType::kInteger32;
  std::uint32_t dwValueHnid = 0;  ///< the value itself (IsInline), a heap item or a sub-node; 0 for an empty value

  PropTag Tag() const { return MakeTag(wPropId, wPropType); }
};

inline constexpr std::size_t kPropertyKeySize = 2;
inline constexpr std::size_t kPropertyDataSize = 6;

}  // namespace velmora
