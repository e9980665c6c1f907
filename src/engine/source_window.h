// Reads a source front to back in large pieces, whatever the size of the pieces that are looked at.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/source.h"
#include "store/format/byte_view.h"

namespace velmora::engine {

/// A window on a source, which outlives it. A piece of the source that cannot be read counts as zeros.
class SourceWindow {
 public:
  /// Memory that a window takes as a rule, in bytes.
  static constexpr std::size_t kWindowBytes = 1 << 20;

  explicit SourceWindow(const Source& source) : source_(source) {}

  /// `length` bytes from `offset`, cut at the end of the source, so the view's size is what the source
  /// delivers. Moves the window to `offset` unless it holds the range, and has it hold `atOnce` bytes then, or the
  /// range if that is longer. The view lives until the next call.
  ByteView Read(std::uint64_t offset, std::size_t length, std::size_t atOnce = kWindowBytes) {
    if (!Holds(offset, length)) Load(offset, std::max(length, atOnce));
    return ByteView(bytes_).Slice(offset - base_, length);
  }

  /// The same without moving the window: what it does not hold is read by itself. The view lives until the
  /// next call of either.
  ByteView Peek(std::uint64_t offset, std::size_t length) {
    return Holds(offset, length) ? ByteView(bytes_).Slice(offset - base_, length) : ReadPiece(offset, length);
  }

  /// Moves the window to the range, whatever it holds, and shows it.
  ByteView ReadAnew(std::uint64_t offset, std::size_t length) {
    Load(offset, length);
    return ByteView(bytes_);
  }

  /// The same; nothing, and the window is of no use, where some of it cannot be read, of which no note is taken.
  std::optional<ByteView> ReadIfSound(std::uint64_t offset, std::size_t length);

  /// What the window holds, and the file offset of its first byte.
  std::span<const std::byte> Bytes() const { return bytes_; }
  std::uint64_t Base() const { return base_; }

 private:
  bool Holds(std::uint64_t offset, std::size_t length) const {
    if (offset < base_) return false;
    const std::uint64_t start = offset - base_;
    return atEnd_ || (start <= bytes_.size() && bytes_.size() - start >= length);
  }
  void Load(std::uint64_t offset, std::size_t length);
  std::span<std::byte> Room(std::size_t length);
  void Hold(std::uint64_t offset, std::span<const std::byte> room, std::size_t filled);
  ByteView ReadPiece(std::uint64_t offset, std::size_t length);

  const Source& source_;
  std::vector<std::byte> buffer_;
  std::span<const std::byte> bytes_;  ///< the filled part of `buffer_`
  std::uint64_t base_ = 0;
  bool atEnd_ = false;  ///< the source has nothing behind `bytes_`
  std::vector<std::byte> piece_;
};

}  // namespace velmora::engine
