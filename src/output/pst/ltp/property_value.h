// What the bytes of a value must look like.
#pragma once

#include <cstddef>
#include <span>

#include "output/pst/ltp/prop_tag.h"
#include "output/pst/ndb/block_source.h"

namespace velmora::ltp {

/// kCorrupt when the store has no such type, or when the value's size (of multiple values: its table of
/// offsets) does not fit the type. Objects are no values.
ndb::Result<void> CheckValue(PropTag tag, std::span<const std::byte> value);

}  // namespace velmora::ltp
