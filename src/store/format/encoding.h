// How the data blocks of a store are encoded. Internal blocks never are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "store/format/ids.h"

namespace velmora {

enum class CryptMethod : std::uint8_t {
  kNone = 0,
  kPermute = 1,  ///< each byte replaced by a fixed table
  kCyclic = 2,   ///< tables and a key that starts with the block's own id
};

/// Encodes `plain` into `encoded`, which has the same size; the two may be the same bytes.
void EncodeBlock(CryptMethod method, Bid bid, std::span<const std::byte> plain, std::span<std::byte> encoded);

/// Decodes in place bytes that stand `at` bytes from the start of their block.
void DecodeBlock(CryptMethod method, Bid bid, std::span<std::byte> bytes, std::size_t at = 0);

}  // namespace velmora
