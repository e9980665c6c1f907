// Property contexts in one block, formed byte by byte: what a sound store would not hold as well.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/block_reader.h"

namespace velmora::recovery {

inline Bytes BytesOf(std::string_view chars) {
  Bytes bytes(chars.size());
  std::ranges::copy(chars, reinterpret_cast<char*>(bytes.data()));
  return bytes;
}

inline Bytes BytesOf(std::u16string_view units) {
  Bytes bytes(units.size() * 2);
  if (!bytes.empty()) std::memcpy(bytes.data(), units.data(), bytes.size());
  return bytes;
}

inline void Append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

template <class T>
void AppendNumber(Bytes& bytes, T number) {
  const std::size_t at = bytes.size();
  bytes.resize(at + sizeof number);
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

template <class T>
void PutNumber(Bytes& bytes, std::size_t at, T number) {
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

/// A record whose value is the word `value`, or an allocation of its own that holds `data`.
struct RecordSpec {
  std::uint16_t id = 0;
  std::uint16_t type = 0;
  std::uint32_t value = 0;
  std::optional<Bytes> data = {};
};

inline RecordSpec Value(std::uint16_t id, std::uint16_t type, std::uint32_t value) { return {id, type, value, {}}; }
inline RecordSpec Data(std::uint16_t id, std::uint16_t type, Bytes data) { return {id, type, 0, std::move(data)}; }
inline RecordSpec Wide(std::uint16_t id, std::u16string_view text) { return Data(id, 0x001F, BytesOf(text)); }
inline RecordSpec Narrow(std::uint16_t id, std::string_view text) { return Data(id, 0x001E, BytesOf(text)); }

/// Heap identifier of the allocation with that number, counted from 0.
constexpr std::uint32_t HidOf(std::size_t allocation) { return static_cast<std::uint32_t>((allocation + 1) << 5); }

struct HeapOptions {
  std::uint16_t signature = 0xBCEC;
  std::uint16_t marker = 0x02B5;
  std::size_t rootLength = 8;
  std::optional<std::uint32_t> userRoot = {};
  std::optional<std::uint32_t> recordRoot = {};
  std::uint16_t freeCount = 0;  ///< cFree, the word that identifier 0 takes for a start
};

/// Allocation 0 is the tree header, 1 the record array, the values follow in the order of the records.
inline Bytes HeapBlock(const std::vector<RecordSpec>& records, const HeapOptions& options = {}) {
  constexpr std::size_t kHeaderSize = 12;
  Bytes root;
  AppendNumber<std::uint16_t>(root, options.marker);
  AppendNumber<std::uint16_t>(root, 0x0006);
  AppendNumber<std::uint32_t>(root, options.recordRoot.value_or(HidOf(1)));
  root.resize(options.rootLength);

  std::vector<Bytes> allocations = {root, {}};
  Bytes array;
  for (const RecordSpec& record : records) {
    std::uint32_t value = record.value;
    if (record.data) {
      value = HidOf(allocations.size());
      allocations.push_back(*record.data);
    }
    AppendNumber(array, record.id);
    AppendNumber(array, record.type);
    AppendNumber(array, value);
  }
  allocations[1] = array;

  Bytes block(kHeaderSize);
  std::vector<std::uint16_t> places = {kHeaderSize};
  for (const Bytes& allocation : allocations) {
    Append(block, allocation);
    places.push_back(static_cast<std::uint16_t>(block.size()));
  }
  PutNumber(block, 0, static_cast<std::uint16_t>(block.size()));
  PutNumber(block, 2, options.signature);
  PutNumber(block, 4, options.userRoot.value_or(HidOf(0)));
  AppendNumber(block, static_cast<std::uint16_t>(allocations.size()));
  AppendNumber(block, options.freeCount);
  for (const std::uint16_t place : places) AppendNumber(block, place);
  return block;
}

}  // namespace velmora::recovery
