// How far the copy of one object goes.
#pragma once

#include <cstdint>

namespace velmora::complete {

/// Messages in messages, and sub-nodes in sub-nodes: as deep as the readers of sub-nodes go.
inline constexpr int kMostDepth = 64;

/// Values up to this length, in bytes, are brought into their form as a whole; longer ones come across only where they
/// are bytes.
inline constexpr std::uint64_t kMostConverted = std::uint64_t{256} << 20;

}  // namespace velmora::complete
