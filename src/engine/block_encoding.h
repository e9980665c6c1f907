// The encodings of the bytes of data blocks (published: NDB_CRYPT_PERMUTE, NDB_CRYPT_CYCLIC).
#pragma once

#include <cstdint>
#include <span>

namespace velmora::engine {

/// Undoes the permutative encoding, in place.
void DecodePermute(std::span<std::byte> bytes);

/// Undoes the cyclic encoding, in place. The key is the id of the block whose first byte is `bytes[0]`.
void DecodeCyclic(std::uint32_t key, std::span<std::byte> bytes);

}  // namespace velmora::engine
