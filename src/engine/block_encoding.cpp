#include "engine/block_encoding.h"

#include <cstddef>

#include "engine/encoding_tables.h"

namespace velmora::engine {

void DecodePermute(std::span<std::byte> bytes) {
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(mpbbI[std::to_integer<std::uint8_t>(byte)]);
}

void DecodeCyclic(std::uint32_t key, std::span<std::byte> bytes) {
  auto w = static_cast<std::uint16_t>(key ^ (key >> 16));
  for (std::byte& byte : bytes) {
    const auto lo = static_cast<std::uint8_t>(w);
    const auto hi = static_cast<std::uint8_t>(w >> 8);
    auto b = mpbbR[static_cast<std::uint8_t>(std::to_integer<std::uint8_t>(byte) + lo)];
    b = mpbbS[static_cast<std::uint8_t>(b + hi)];
    b = mpbbI[static_cast<std::uint8_t>(b - hi)];
    byte = static_cast<std::byte>(b - lo);
    ++w;
  }
}

}  // namespace velmora::engine
