// The numbers and flags that several kinds of item share.
#pragma once

#include <cstdint>
#include <optional>

#include "recovery/item_converter.h"
#include "store/operations.h"

namespace velmora::items {

/// The field that a record of this type and long id writes on an item of this kind, which is none of mail.
std::optional<output::Field> FindCommonFlag(recovery::ItemKind kind, PropType type, std::uint32_t id);

}  // namespace velmora::items
