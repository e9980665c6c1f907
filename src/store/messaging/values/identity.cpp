#include "store/messaging/values/identity.h"

#include <md5.h>

#include <algorithm>
#include <bit>
#include <random>
#include <string>

#include "store/format/little_endian.h"
#include "store/messaging/values/stored_text.h"

namespace velmora::messaging {
namespace {

constexpr std::size_t kNodeEntryIdSize = 24;
constexpr std::size_t kRecordKeyAt = 4;
constexpr std::size_t kNidAt = 20;

// Published constant: the provider of addresses that stand in no book.
constexpr std::uint8_t kOneOffProvider[] = {0x81, 0x2B, 0x1F, 0xA4, 0xBE, 0xA3, 0x10, 0x19,
                                            0x9D, 0x6E, 0x00, 0xDD, 0x01, 0x0F, 0x54, 0x02};
constexpr std::uint16_t kUnicodeWithoutRichInfo = 0x8001;

/// Spreads the bits of a number over all of it.
std::uint64_t Mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15;
  value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
  value = (value ^ value >> 27) * 0x94D049BB133111EB;
  return value ^ value >> 31;
}

}  // namespace

Bytes NodeEntryId(const Uid& recordKey, Nid nid) {
  Bytes out(kRecordKeyAt);
  Append(out, recordKey);
  Append(out, Value(nid));
  return out;
}

std::optional<Nid> NodeOfEntryId(std::span<const std::byte> entryId, const Uid& recordKey) {
  if (entryId.size() != kNodeEntryIdSize) return std::nullopt;
  if (!std::ranges::equal(entryId.subspan(kRecordKeyAt, recordKey.size()), recordKey)) return std::nullopt;
  return Nid{Load<std::uint32_t>(entryId, kNidAt)};
}

Bytes OneOffEntryId(text::TextView name, text::TextView type, text::TextView address) {
  Bytes out(sizeof(std::uint32_t));
  Append(out, std::as_bytes(std::span(kOneOffProvider)));
  Append(out, std::uint16_t{0});
  Append(out, kUnicodeWithoutRichInfo);
  for (const text::TextView part : {name, type, address}) {
    Append(out, std::as_bytes(std::span(part)));
    Append(out, std::uint16_t{0});
  }
  return out;
}

Bytes AddressSearchKey(text::TextView type, text::TextView address) {
  const std::string key = text::ToUtf8(AsciiUpper(type)) + ":" + text::ToUtf8(AsciiUpper(address));
  const auto bytes = std::as_bytes(std::span(key.c_str(), key.size() + 1));
  return {bytes.begin(), bytes.end()};
}

std::optional<Uid> ConversationIdOf(text::TextView topic) {
  if (topic.empty()) return std::nullopt;
  const text::Text upper = text::UpperCased(topic);
  MD5_CTX context;
  MD5Init(&context);
  MD5Update(&context, reinterpret_cast<const std::uint8_t*>(upper.data()), upper.size() * sizeof(char16_t));
  Uid id;
  MD5Final(reinterpret_cast<std::uint8_t*>(id.data()), &context);
  return id;
}

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
    velmora::Store(std::span<std::byte>(uid), i, NextNumber());
  }
  // The form of a random GUID (version 4) on disk, where the third group is little-endian.
  uid[7] = (uid[7] & std::byte{0x0F}) | std::byte{0x40};
  uid[8] = (uid[8] & std::byte{0x3F}) | std::byte{0x80};
  return uid;
}

}  // namespace velmora::messaging
