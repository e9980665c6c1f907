// The checksum of header, pages and blocks: the reflected CRC-32 of polynomial 0xEDB88320 with initial value
// 0 and no final complement. Compressed texts, the store password and the names of named properties use it
// too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace velmora {

std::uint32_t WeakCrc(std::span<const std::byte> bytes);

}  // namespace velmora
