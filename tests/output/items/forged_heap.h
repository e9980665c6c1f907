// Makes the block of a message: allocations and the page map that gives their places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "recovery/item_converter.h"
#include "text/text.h"

namespace velmora::items::testing {

using Bytes = std::vector<std::byte>;

inline void AppendBytes(Bytes& bytes, std::string_view more) {
  for (char c : more) bytes.push_back(static_cast<std::byte>(c));
}

inline void AppendNumber(Bytes& bytes, std::uint64_t number, int width) {
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::byte>(number >> (8 * i)));
}

inline Bytes BytesOf(std::string_view chars) {
  Bytes bytes;
  AppendBytes(bytes, chars);
  return bytes;
}

inline Bytes Utf16(text::TextView text) {
  Bytes bytes;
  for (char16_t unit : text) AppendNumber(bytes, unit, 2);
  return bytes;
}

inline Bytes Number(std::uint64_t number, int width) {
  Bytes bytes;
  AppendNumber(bytes, number, width);
  return bytes;
}

/// A list as a sound store holds it: count, an offset a value, the values.
inline Bytes List(const std::vector<Bytes>& values) {
  Bytes bytes;
  AppendNumber(bytes, values.size(), 4);
  std::size_t offset = 4 + 4 * values.size();
  for (const Bytes& value : values) {
    AppendNumber(bytes, offset, 4);
    offset += value.size();
  }
  for (const Bytes& value : values) bytes.insert(bytes.end(), value.begin(), value.end());
  return bytes;
}

/// The first allocation begins at `firstOffset`, behind the heap header and the tree header; the page map
/// stands behind the last one. Each value has a start and an end of its own in the page map, so that a test
/// can forge any range.
class ForgedHeap {
 public:
  explicit ForgedHeap(std::size_t firstOffset = 20) : bytes_(firstOffset) {}

  /// An allocation with this content. Returns the value of a record that names it.
  std::uint32_t Add(const Bytes& content) {
    const std::size_t start = bytes_.size();
    bytes_.insert(bytes_.end(), content.begin(), content.end());
    return AddRange(start, bytes_.size());
  }

  /// An allocation that is said to lie there.
  std::uint32_t AddRange(std::size_t start, std::size_t end) {
    ranges_.emplace_back(start, end);
    return static_cast<std::uint32_t>((2 * ranges_.size() - 1) << 5);
  }

  /// Where the next allocation would begin.
  std::size_t NextOffset() const { return bytes_.size(); }

  /// The block, `size` bytes long if that is given (zeros at the end, or cut). It lives as long as this heap
  /// and until the next change.
  recovery::MessageBlock Block(std::size_t size = 0) {
    const std::size_t map = bytes_.size();
    block_ = bytes_;
    AppendNumber(block_, 2 * ranges_.size(), 2);  // allocations
    AppendNumber(block_, 0, 2);                   // free ones
    for (const auto& [start, end] : ranges_) {
      AppendNumber(block_, start, 2);
      AppendNumber(block_, end, 2);
    }
    if (size != 0) block_.resize(size);
    recovery::MessageBlock block;
    block.bytes = ByteView(block_);
    block.record = {.bid = 4, .size = static_cast<std::uint32_t>(block_.size()), .offset = 0x4000};
    block.heapPageMapOffset = static_cast<std::uint16_t>(map);
    return block;
  }

 private:
  Bytes bytes_;
  std::vector<std::pair<std::size_t, std::size_t>> ranges_;
  Bytes block_;
};

}  // namespace velmora::items::testing
