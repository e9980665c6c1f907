// Little-endian bytes put together in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "text/text.h"

namespace velmora::messaging {

using Bytes = std::vector<std::byte>;

class ByteWriter {
 public:
  void U8(std::uint8_t value) { out_.push_back(std::byte{value}); }
  void U16(std::uint16_t value) { Number(value, 2); }
  void U32(std::uint32_t value) { Number(value, 4); }
  void U64(std::uint64_t value) { Number(value, 8); }
  void Raw(std::span<const std::byte> bytes) { out_.insert(out_.end(), bytes.begin(), bytes.end()); }

  /// The units of a text, without a terminator.
  void Units(text::TextView text) { Raw(std::as_bytes(std::span(text))); }

  std::size_t Size() const { return out_.size(); }
  Bytes Take() { return std::move(out_); }

 private:
  void Number(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out_.push_back(static_cast<std::byte>(value >> (8 * i)));
  }

  Bytes out_;
};

}  // namespace velmora::messaging
