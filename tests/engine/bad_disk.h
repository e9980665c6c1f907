// A source on a disk with bad places, which counts what is read from it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/file.h"

namespace velmora::engine {

/// A stretch of a disk that cannot be read: from the first offset to before the second.
using BadPlace = std::pair<std::uint64_t, std::uint64_t>;

class BadDisk : public platform::ByteSource {
 public:
  BadDisk(std::unique_ptr<const platform::ByteSource> content, std::vector<BadPlace> bad)
      : content_(std::move(content)), bad_(std::move(bad)) {}

  std::uint64_t Size() const override { return content_->Size(); }

  /// A read that touches a bad place fails as a whole.
  platform::Result<std::size_t> ReadAt(std::uint64_t offset, std::span<std::byte> out) const override {
    reads.fetch_add(1, std::memory_order_relaxed);  // orders nothing, so that races of the reader still show
    bytesRead.fetch_add(out.size(), std::memory_order_relaxed);
    for (const auto& [from, to] : bad_) {
      if (offset < to && offset + out.size() > from) {
        failures.fetch_add(1, std::memory_order_relaxed);
        return tl::unexpected(platform::Failure{platform::FailureKind::kInputOutput, "disk", offset, "bad sector"});
      }
    }
    return content_->ReadAt(offset, out);
  }

  /// Where somebody counts them.
  bool Prefetch(std::uint64_t offset, std::uint64_t length) const override {
    if (prefetched != nullptr) prefetched->emplace_back(offset, offset + length);
    return prefetched != nullptr;
  }

  std::vector<std::pair<std::uint64_t, std::uint64_t>>* prefetched = nullptr;  ///< from the first to before the second
  mutable std::atomic<int> reads = 0;
  mutable std::atomic<int> failures = 0;
  mutable std::atomic<std::uint64_t> bytesRead = 0;

 private:
  std::unique_ptr<const platform::ByteSource> content_;
  std::vector<BadPlace> bad_;
};

/// Opens files on a disk with these bad places, of which there may be more or fewer at the next opening.
inline platform::SourceOpener OpenBadDisk(const std::vector<BadPlace>& bad) {
  return [&bad](const std::filesystem::path& path) -> platform::Result<std::unique_ptr<platform::ByteSource>> {
    auto file = platform::OpenForReading(path);
    if (!file || bad.empty()) return file;
    return std::make_unique<BadDisk>(std::move(*file), bad);
  };
}

}  // namespace velmora::engine
