// The signature that ties a page or block to its place.
#pragma once

#include <cstdint>

namespace velmora {

/// The published page and block signature: offset and id, low 32 bits each, combined and folded to 16 bits.
constexpr std::uint16_t ComputeSig(std::uint64_t offset, std::uint64_t id) {
  const auto mixed = static_cast<std::uint32_t>(offset ^ id);
  return static_cast<std::uint16_t>(mixed ^ (mixed >> 16));
}

}  // namespace velmora
