// The one seam through which bytes of a damaged store are looked at.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace velmora {

using Bytes = std::vector<std::byte>;

/// A view of bytes whose every offset and count may be hostile. Numbers are little-endian. A byte beyond
/// the end reads as 0 and a range is cut at the end, so no reader can leave the buffer; a reader that has
/// to tell "beyond" from "zero" compares with Size() first, as the rules of its structure say.
class ByteView {
 public:
  ByteView() = default;
  explicit ByteView(std::span<const std::byte> bytes) : bytes_(bytes) {}

  std::size_t Size() const { return bytes_.size(); }
  bool Empty() const { return bytes_.empty(); }

  std::uint8_t U8(std::uint64_t offset) const { return Number<std::uint8_t>(offset); }
  std::uint16_t U16(std::uint64_t offset) const { return Number<std::uint16_t>(offset); }
  std::uint32_t U32(std::uint64_t offset) const { return Number<std::uint32_t>(offset); }
  std::uint64_t U64(std::uint64_t offset) const { return Number<std::uint64_t>(offset); }

  /// An id or offset, of 4 or 8 bytes.
  std::uint64_t Word(std::uint64_t offset, std::uint32_t width) const { return width == 4 ? U32(offset) : U64(offset); }

  /// The bytes from `start` to before `end`, cut at the end of the view; empty when start >= end.
  ByteView Range(std::uint64_t start, std::uint64_t end) const {
    end = std::min<std::uint64_t>(end, bytes_.size());
    if (start >= end) return {};
    return ByteView(bytes_.subspan(start, end - start));
  }

  /// `length` bytes from `offset`, cut at the end of the view.
  ByteView Slice(std::uint64_t offset, std::uint64_t length) const {
    if (offset >= bytes_.size()) return {};
    return ByteView(bytes_.subspan(offset, std::min<std::uint64_t>(length, bytes_.size() - offset)));
  }

  std::span<const std::byte> Bytes() const { return bytes_; }
  std::string_view Chars() const { return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()}; }

 private:
  template <class T>
  T Number(std::uint64_t offset) const {
    if (offset <= bytes_.size() && bytes_.size() - offset >= sizeof(T)) {
      T value;  // the hosts that this runs on are little-endian; platform asserts it
      std::memcpy(&value, bytes_.data() + offset, sizeof(T));
      return value;
    }
    T value = 0;
    for (std::size_t i = 0; i < sizeof(T) && offset + i < bytes_.size() && offset + i >= offset; ++i) {
      value = static_cast<T>(value | static_cast<T>(std::to_integer<std::uint64_t>(bytes_[offset + i]) << (8 * i)));
    }
    return value;
  }

  std::span<const std::byte> bytes_;
};

}  // namespace velmora
