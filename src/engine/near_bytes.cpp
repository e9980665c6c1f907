#include "engine/near_bytes.h"

#include <algorithm>
#include <cstring>

namespace velmora::engine {
namespace {

/// So that a block that begins in a window mostly ends there.
constexpr std::size_t kBehindWindow = std::size_t{16} << 10;

/// More than this of one request a system may leave out.
constexpr std::uint64_t kPrefetch = std::uint64_t{128} << 10;

/// How far the system is asked ahead of a reader.
constexpr std::uint64_t kPrefetchAhead = std::uint64_t{1} << 20;

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
  const auto read = ReadFromDisk(window.begin, {window.bytes.get(), window.length + kBehindWindow});
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
  if (follows && !hasFailed_) ReadAhead(window.begin + kWindow, kWindow, ahead_[0]);
}

void NearBytes::ReadAhead(std::uint64_t begin, std::size_t length, Ahead& ahead) const {
  ahead.reading.reset();
  ahead.window.begin = begin;
  ahead.window.length = length;
  if (begin < Size()) ahead.reading = workers_.Start([this, &ahead] { Fill(ahead.window); });
}

void NearBytes::ReadBehind(const Window& window, Ahead& ahead) const {
  ReadAhead(window.begin + window.length, std::min(2 * window.length, kMostAhead), ahead);
}

/// Makes what is read ahead the newest window, where the offset lies in it.
bool NearBytes::TakeAhead(std::uint64_t offset) const {
  const std::size_t number = ahead_[0].IsFor(offset) ? 0 : 1;
  Ahead& taken = ahead_[number];
  Ahead& other = ahead_[1 - number];
  if (!taken.IsFor(offset)) return false;
  // Whoever has to wait for another thread reads the other one meanwhile.
  if (other.reading != nullptr && taken.reading->Now() == platform::Workers::Step::State::kRunning) {
    other.reading->Wait();
  }
  taken.reading->Wait();
  taken.reading.reset();
  newest_ = (newest_ + 1) % windows_.size();
  std::swap(windows_[newest_], taken.window);
  const Window& window = windows_[newest_];
  hasFailed_ = window.hasFailed;
  if (hasFailed_) {
    other.reading.reset();
    return true;
  }
  const bool isNext = other.reading != nullptr && other.window.begin == window.begin + window.length;
  if (!isNext) ReadBehind(window, other);
  ReadBehind(other.window, taken);
  return true;
}

void NearBytes::NoteRead(std::uint64_t offset, std::size_t size) const {
  const auto older = [](std::uint64_t bytes) { return bytes - bytes / 16; };
  asked_ = older(asked_) + size;
  way_ = older(way_) + std::min<std::uint64_t>(std::max(offset, last_) - std::min(offset, last_), kWindow);
  last_ = offset;
}

/// Asks the system for what lies from the offset on, ahead of those who will want it. A disk with bad places would try
/// them for seconds, though nobody may want what stands there.
bool NearBytes::IsPrefetched(std::uint64_t offset) const {
  if (diskHasFailed_) return false;
  if (offset < prefetchedFrom_ || offset >= prefetchedTo_) {
    prefetchedFrom_ = prefetchedTo_ = offset / kWindow * kWindow;
  }
  for (; prefetchedTo_ < std::min(Size(), offset + kPrefetchAhead); prefetchedTo_ += kPrefetch) {
    if (!bytes_->Prefetch(prefetchedTo_, kPrefetch)) return false;
  }
  return true;
}

platform::Result<std::size_t> NearBytes::ReadFromDisk(std::uint64_t offset, std::span<std::byte> out) const {
  auto read = bytes_->ReadAt(offset, out);
  if (!read) diskHasFailed_ = true;
  return read;
}

platform::Result<std::size_t> NearBytes::ReadAt(std::uint64_t offset, std::span<std::byte> out) const {
  if (out.empty() || out.size() > kWindow) return ReadFromDisk(offset, out);
  const std::lock_guard lock(mutex_);
  const auto held = [&] {
    const auto part = windows_[newest_].Part(offset, out.size());
    return part.empty() ? windows_[1 - newest_].Part(offset, out.size()) : part;
  };
  std::span<const std::byte> part = held();
  const bool mayLoad = out.size() <= kSmallRead && !hasFailed_ && IsNear(offset);
  if (part.empty() && !(mayLoad && IsSparse() && IsPrefetched(offset))) {
    if (!TakeAhead(offset) && mayLoad) Load(offset);
    part = held();
  }
  NoteRead(offset, out.size());
  if (part.empty()) return ReadFromDisk(offset, out);
  std::memcpy(out.data(), part.data(), out.size());
  return out.size();
}

}  // namespace velmora::engine
