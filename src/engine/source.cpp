#include "engine/source.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace velmora::engine {
namespace {

/// What is given up at a time where the source cannot be read: a sector of today's disks.
constexpr std::size_t kBadPiece = 4096;

bool IsOffset(std::uint64_t offset) {
  return offset <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

/// Bytes from the offset to the end of the source, `most` at most.
std::size_t Available(std::uint64_t size, std::uint64_t offset, std::size_t most) {
  return offset >= size ? 0 : std::min<std::uint64_t>(most, size - offset);
}

}  // namespace

void BadRanges::Add(std::uint64_t offset, std::uint64_t length) {
  if (length == 0) return;
  std::uint64_t end = offset + length;
  auto next = ranges_.lower_bound(offset);
  const bool hasBefore = next != ranges_.begin();
  if (next != ranges_.end() && next->first < end) return;
  if (hasBefore && std::prev(next)->second > offset) return;

  if (next != ranges_.end() && next->first == end) {
    end = next->second;
    next = ranges_.erase(next);
  }
  if (hasBefore && std::prev(next)->second == offset) {
    std::prev(next)->second = end;
  } else {
    ranges_.emplace_hint(next, offset, end);
  }
}

void Source::Open(std::unique_ptr<const platform::ByteSource> bytes, std::uint64_t begin) {
  bytes_ = std::move(bytes);
  begin_ = begin;
  firstFailure_.reset();
  unread_ = {};
}

platform::Result<std::size_t> Source::Read(std::uint64_t offset, std::span<std::byte> out) const {
  if (!IsOffset(offset) || bytes_ == nullptr) {
    return tl::unexpected(
        platform::Failure{platform::FailureKind::kCorrupt, "source", offset, "no file reaches there"});
  }
  auto delivered = bytes_->ReadAt(offset, out);
  if (delivered) return delivered;
  const std::lock_guard lock(mutex_);
  if (!firstFailure_) firstFailure_ = delivered.error();
  unread_.Add(offset, Available(Size(), offset, out.size()));
  return delivered;
}

std::size_t Source::ReadAround(std::uint64_t offset, std::span<std::byte> out) const {
  if (!IsOffset(offset) || bytes_ == nullptr) return 0;
  if (const auto delivered = bytes_->ReadAt(offset, out)) return *delivered;
  const std::size_t wanted = Available(Size(), offset, out.size());
  for (std::size_t at = 0; at < wanted; at += kBadPiece) {
    const auto piece = out.subspan(at, std::min(kBadPiece, wanted - at));
    const std::size_t read = Read(offset + at, piece).value_or(0);
    std::fill(piece.begin() + static_cast<std::ptrdiff_t>(read), piece.end(), std::byte{0});
  }
  return wanted;
}

std::optional<platform::Failure> Source::FirstFailure() const {
  const std::lock_guard lock(mutex_);
  return firstFailure_;
}

BadRanges Source::Unread() const {
  const std::lock_guard lock(mutex_);
  return unread_;
}

}  // namespace velmora::engine
