// The two encodings of data blocks.
#pragma once

#include <cstdint>
#include <span>

#include "forge/format.h"

namespace velmora::forge {

/// Encodes the data of a block in place. `key` is the low half of the block's id; the cyclic encoding
/// alone depends on it, and applied twice it gives the plain data again.
void Encode(Encoding encoding, std::uint32_t key, std::span<std::byte> data);

/// The reverse of Encode.
void Decode(Encoding encoding, std::uint32_t key, std::span<std::byte> data);

}  // namespace velmora::forge
