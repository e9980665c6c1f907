#include "engine/near_bytes.h"

#include <algorithm>
#include <cstring>

namespace velmora::engine {
namespace {

/// So that a block that begins in a window mostly ends there.
constexpr std::size_t kBehindWindow = std::size_t{16} << 10;

/// A larger one costs more for its bytes than for asking.
constexpr std::size_t kSmallRead = 4096;

/// How far the beginnings of two windows may lie apart of which one follows the other: what lies between them may have
/// been read in one piece.
constexpr std::uint64_t kFollowing = 2 * NearBytes::kWindow;

}  // namespace

std::span<const std::byte> NearBytes::Window::Part(std::uint64_t offset, std::size_t wanted) const {
  if (offset < begin || offset - begin > size || size - (offset - begin) < wanted) return {};
  return {bytes.get() + static_cast<std::size_t>(offset - begin), wanted};
}

bool NearBytes::IsNear(std::uint64_t offset) const {
  return std::max(offset, last_) - std::min(offset, last_) <= kWindow;
}

void NearBytes::Fill(Window& window) const {
  if (window.bytes == nullptr) window.bytes = std::make_unique_for_overwrite<std::byte[]>(kMostAhead + kBehindWindow);
  const auto read = bytes_->ReadAt(window.begin, {window.bytes.get(), window.length + kBehindWindow});
  window.size = read.value_or(0);
  window.hasFailed = !read;
}

/// Makes a window around the offset the newest one.
void NearBytes::Load(std::uint64_t offset) const {
  const Window& before = windows_[newest_];
  newest_ = (newest_ + 1) % windows_.size();
  Window& window = windows_[newest_];
  window.begin = offset / kWindow * kWindow;
  window.length = kWindow;
  Fill(window);
  hasFailed_ = window.hasFailed;
  const bool follows = before.size != 0 && window.begin - before.begin <= kFollowing;  // far, if it lies ahead of it
  if (follows && !hasFailed_) ReadAhead(window.begin + kWindow, kWindow);
}

void NearBytes::ReadAhead(std::uint64_t begin, std::size_t length) const {
  reading_.reset();
  ahead_.begin = begin;
  ahead_.length = length;
  if (begin < Size()) reading_ = workers_.Start([this] { Fill(ahead_); });
}

/// Makes what is read ahead the newest window.
void NearBytes::TakeAhead() const {
  reading_->Wait();
  reading_.reset();
  newest_ = (newest_ + 1) % windows_.size();
  std::swap(windows_[newest_], ahead_);
  const Window& window = windows_[newest_];
  hasFailed_ = window.hasFailed;
  if (!hasFailed_) ReadAhead(window.begin + window.length, std::min(2 * window.length, kMostAhead));
}

platform::Result<std::size_t> NearBytes::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (out.empty() || out.size() > kWindow) return bytes_->ReadAt(offset, out);
  const std::lock_guard lock(mutex_);
  const auto held = [&] {
    const auto part = windows_[newest_].Part(offset, out.size());
    return part.empty() ? windows_[1 - newest_].Part(offset, out.size()) : part;
  };
  std::span<const std::byte> part = held();
  if (part.empty() && reading_ != nullptr && ahead_.IsFor(offset)) {
    TakeAhead();
    part = held();
  } else if (part.empty() && out.size() <= kSmallRead && !hasFailed_ && IsNear(offset)) {
    Load(offset);
    part = held();
  }
  last_ = offset;
  if (part.empty()) return bytes_->ReadAt(offset, out);
  std::memcpy(out.data(), part.data(), out.size());
  return out.size();
}

}  // namespace velmora::engine
