#include "forge/checksum.h"

#include <zlib.h>

namespace velmora::forge {

// zlib complements at the start and at the end; both are undone here.
std::uint32_t Checksum(std::span<const std::byte> bytes) {
  if (bytes.empty()) return 0;
  const auto* data = reinterpret_cast<const Bytef*>(bytes.data());
  return static_cast<std::uint32_t>(crc32_z(0xFFFFFFFFU, data, bytes.size()) ^ 0xFFFFFFFFU);
}

std::uint16_t Signature(std::uint64_t offset, std::uint64_t id) {
  const auto mixed = static_cast<std::uint32_t>(offset) ^ static_cast<std::uint32_t>(id);
  return static_cast<std::uint16_t>((mixed >> 16) ^ mixed);
}

}  // namespace velmora::forge
