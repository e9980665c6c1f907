#include "store/format/checksum.h"

#include <libdeflate.h>

namespace velmora {

// The library's sum is complemented on the way in and out.
std::uint32_t WeakCrc(std::span<const std::byte> bytes) {
  return ~libdeflate_crc32(0xFFFFFFFF, bytes.data(), bytes.size());
}

}  // namespace velmora
