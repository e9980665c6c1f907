// What comes out of a packed block, as far as it is whole.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace velmora::engine {

/// Inflates the beginning of a zlib stream: at most `most` bytes, fewer where the stream ends or breaks.
std::vector<std::byte> InflatePart(std::span<const std::byte> packed, std::size_t most);

}  // namespace velmora::engine
