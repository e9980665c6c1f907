// What the bytes of a value must look like.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/prop_tag.h"

namespace velmora::ltp {

/// Raises kCorrupt when the store has no such type, or when no value of it has `size` bytes. Objects are no values.
void CheckSize(PropTag tag, std::uint64_t size);

/// CheckSize, and of multiple values of variable size: whether the table of offsets fits.
void CheckValue(PropTag tag, std::span<const std::byte> value);

}  // namespace velmora::ltp
