// Inflates what a store of 4K pages packed: zlib streams.
#pragma once

#include <cstddef>
#include <span>

namespace velmora {

/// Fills `out` with the content of a whole stream; false where it is broken or its content has another size.
[[nodiscard]] bool Inflate(std::span<const std::byte> packed, std::span<std::byte> out);

}  // namespace velmora
