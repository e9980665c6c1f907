// What proves a page or a block: the format's checksum and its signature.
#pragma once

#include <cstdint>
#include <span>

namespace velmora::forge {

/// CRC-32 of the reflected polynomial 0xEDB88320, start value 0, no final complement.
std::uint32_t Checksum(std::span<const std::byte> bytes);

/// Signature of the page or block of that id at that file offset.
std::uint16_t Signature(std::uint64_t offset, std::uint64_t id);

}  // namespace velmora::forge
