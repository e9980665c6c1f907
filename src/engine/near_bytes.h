// A file whose small reads that lie near one another are served from larger ones.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>

#include "platform/file.h"

namespace velmora::engine {

/// For a reader that asks for a block here and a block there, most of them close to the last one, as a message was
/// written: a disk that has to seek does so seldom, and the system is asked seldom. Reads that lie far apart are made
/// as they are asked for. A disk that failed once is asked for nothing any more that nobody wants.
class NearBytes : public platform::ByteSource {
 public:
  /// Bytes that are read at a time.
  static constexpr std::size_t kWindow = std::size_t{64} << 10;

  explicit NearBytes(std::shared_ptr<const platform::ByteSource> bytes) : bytes_(std::move(bytes)) {}

  std::uint64_t Size() const override { return bytes_->Size(); }
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override;

 private:
  struct Window {
    std::uint64_t begin = 0;
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;

    std::span<const std::byte> Part(std::uint64_t offset, std::size_t length) const;
  };

  bool IsNear(std::uint64_t offset) const;
  const Window* Load(std::uint64_t offset) const;

  std::shared_ptr<const platform::ByteSource> bytes_;
  mutable std::mutex mutex_;               ///< guards what follows
  mutable std::array<Window, 2> windows_;  ///< a message may lie in both
  mutable std::size_t oldest_ = 0;
  mutable std::uint64_t last_ = UINT64_MAX;
  mutable bool hasFailed_ = false;
};

}  // namespace velmora::engine
