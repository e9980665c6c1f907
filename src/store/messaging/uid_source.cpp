#include "store/messaging/uid_source.h"

#include <bit>
#include <random>

namespace velmora::messaging {
namespace {

/// Spreads the bits of a number over all of it.
std::uint64_t Mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15;
  value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
  value = (value ^ value >> 27) * 0x94D049BB133111EB;
  return value ^ value >> 31;
}

}  // namespace

UidSource::UidSource(std::optional<std::int64_t> seed, std::string_view name) {
  if (seed) {
    state_[0] = Mix(static_cast<std::uint64_t>(*seed));
    for (const char c : name) state_[0] = Mix(state_[0] ^ static_cast<unsigned char>(c));
    state_[1] = Mix(state_[0]);
  } else {
    std::random_device device;
    for (std::uint64_t& word : state_) word = std::uint64_t{device()} << 32 | device();
  }
}

// xoroshiro128+: long period, and fast enough to be called for every item.
std::uint64_t UidSource::NextNumber() {
  const std::uint64_t sum = state_[0] + state_[1];
  const std::uint64_t mixed = state_[0] ^ state_[1];
  state_[0] = std::rotl(state_[0], 24) ^ mixed ^ mixed << 16;
  state_[1] = std::rotl(mixed, 37);
  return sum;
}

Uid UidSource::Next() {
  Uid uid;
  for (std::size_t i = 0; i < uid.size(); i += 8) {
    const std::uint64_t number = NextNumber();
    for (std::size_t b = 0; b < 8; ++b) uid[i + b] = static_cast<std::byte>(number >> (8 * b));
  }
  // The form of a random GUID (version 4) on disk, where the third group is little-endian.
  uid[7] = (uid[7] & std::byte{0x0F}) | std::byte{0x40};
  uid[8] = (uid[8] & std::byte{0x3F}) | std::byte{0x80};
  return uid;
}

}  // namespace velmora::messaging
