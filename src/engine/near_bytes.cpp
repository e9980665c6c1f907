#include "engine/near_bytes.h"

#include <algorithm>
#include <cstring>

namespace velmora::engine {
namespace {

/// So that a block that begins in a window mostly ends there.
constexpr std::size_t kBehindWindow = std::size_t{16} << 10;

/// A larger one costs more for its bytes than for asking.
constexpr std::size_t kSmallRead = 4096;

}  // namespace

std::span<const std::byte> NearBytes::Window::Part(std::uint64_t offset, std::size_t length) const {
  if (offset < begin || offset - begin > size || size - (offset - begin) < length) return {};
  return {bytes.get() + static_cast<std::size_t>(offset - begin), length};
}

bool NearBytes::IsNear(std::uint64_t offset) const {
  return std::max(offset, last_) - std::min(offset, last_) <= kWindow;
}

/// Null where the disk fails.
const NearBytes::Window* NearBytes::Load(std::uint64_t offset) const {
  Window& window = windows_[oldest_];
  oldest_ = (oldest_ + 1) % windows_.size();
  window.begin = offset / kWindow * kWindow;
  if (window.bytes == nullptr) window.bytes = std::make_unique_for_overwrite<std::byte[]>(kWindow + kBehindWindow);
  const auto read = bytes_->ReadAt(window.begin, {window.bytes.get(), kWindow + kBehindWindow});
  window.size = read.value_or(0);
  hasFailed_ = !read;
  return read ? &window : nullptr;
}

platform::Result<std::size_t> NearBytes::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (out.empty() || out.size() > kWindow) return bytes_->ReadAt(offset, out);
  const std::lock_guard lock(mutex_);
  std::span<const std::byte> part;
  for (const Window& window : windows_) {
    if (part.empty()) part = window.Part(offset, out.size());
  }
  if (part.empty() && out.size() <= kSmallRead && !hasFailed_ && IsNear(offset)) {
    if (const Window* window = Load(offset)) part = window->Part(offset, out.size());
  }
  last_ = offset;
  if (part.empty()) return bytes_->ReadAt(offset, out);
  std::memcpy(out.data(), part.data(), out.size());
  return out.size();
}

}  // namespace velmora::engine
