// A store within a file, as if it were a file of its own.
#pragma once

#include <algorithm>
#include <memory>

#include "platform/file.h"

namespace velmora::engine {

/// What is missing of the store's front reads as zeros.
class PlacedBytes : public platform::ByteSource {
 public:
  /// The store's first byte lies at `origin` of the file, or would if it is negative, and its last one ahead of `to`,
  /// which is not behind the end of the file.
  PlacedBytes(std::shared_ptr<const platform::ByteSource> file, std::int64_t origin, std::uint64_t to)
      : file_(std::move(file)),
        origin_(static_cast<std::uint64_t>(origin)),
        missing_(origin < 0 ? 0 - origin_ : 0),
        size_(to - origin_) {}

  std::uint64_t Size() const override { return size_; }

  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    if (offset >= size_) return std::size_t{0};
    out = out.first(std::min<std::uint64_t>(out.size(), size_ - offset));
    const std::size_t zeros = offset < missing_ ? std::min<std::uint64_t>(out.size(), missing_ - offset) : 0;
    std::ranges::fill(out.first(zeros), std::byte{0});
    if (zeros == out.size()) return zeros;
    const auto read = file_->ReadAt(offset + zeros + origin_, out.subspan(zeros));
    if (!read) return read;
    return zeros + *read;
  }

 private:
  std::shared_ptr<const platform::ByteSource> file_;
  std::uint64_t origin_;  ///< of a negative one the complement, so that sums with it wrap around
  std::uint64_t missing_;
  std::uint64_t size_;
};

}  // namespace velmora::engine
