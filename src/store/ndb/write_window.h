// Gathers writes that follow one another into large ones.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/file.h"
#include "store/ndb/allocation_map.h"
#include "store/ndb/block_source.h"

namespace velmora::ndb {

/// Bytes written last that are not in the file yet: one stretch of the file of up to kCapacity bytes. A failure of the
/// file is raised (FailureError).
class WriteWindow {
 public:
  static constexpr std::size_t kCapacity = kAreaSize;

  explicit WriteWindow(platform::ByteStore& file);

  /// Room for `size` bytes (at most kCapacity) that belong at `ib`, to be filled before the next call. What
  /// stands in the window and does not touch them goes to the file first.
  [[nodiscard]] std::span<std::byte> Place(std::uint64_t ib, std::size_t size);

  /// Hands the window to the file.
  void Flush();

  /// Reads `out.size()` bytes at `ib`, which must have been written in one piece, from the window or the
  /// file; the number delivered is short at the end of the file.
  [[nodiscard]] std::size_t Read(std::uint64_t ib, std::span<std::byte> out) const;

 private:
  bool Holds(std::uint64_t ib, std::size_t size) const { return ib >= start_ && ib + size <= start_ + size_; }

  platform::ByteStore& file_;
  std::unique_ptr<std::byte[]> bytes_;
  std::uint64_t start_ = 0;
  std::size_t size_ = 0;
};

}  // namespace velmora::ndb
