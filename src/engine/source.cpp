#include "engine/source.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace velmora::engine {
namespace {

/// What is given up at a time where the source cannot be read: a sector of today's disks.
constexpr std::size_t kBadPiece = 4096;

/// A bad stretch is tried again after one so-manieth part of its length so far.
constexpr std::uint64_t kStepsInBad = 16;

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

std::optional<BadRanges::Range> BadRanges::EndingBehind(std::uint64_t offset) const {
  auto next = ranges_.upper_bound(offset);
  if (next != ranges_.begin() && std::prev(next)->second > offset) --next;
  return next != ranges_.end() ? std::optional<Range>(*next) : std::nullopt;
}

std::uint64_t BadRanges::BytesAheadOf(std::uint64_t offset) const {
  const auto next = ranges_.lower_bound(offset);
  if (next == ranges_.begin() || std::prev(next)->second != offset) return 0;
  return offset - std::prev(next)->first;
}

void Source::Open(std::shared_ptr<const platform::ByteSource> bytes, std::uint64_t begin) {
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
  out = out.first(Available(Size(), offset, out.size()));
  auto delivered = ReadBytes(offset, out);
  if (!delivered) NoteBad(offset, out.size(), delivered.error());
  return delivered;
}

std::size_t Source::ReadAround(std::uint64_t offset, std::span<std::byte> out) const {
  if (!IsOffset(offset) || bytes_ == nullptr) return 0;
  out = out.first(Available(Size(), offset, out.size()));
  for (std::size_t at = 0; at < out.size();) {
    std::optional<BadRanges::Range> bad;
    {
      const std::lock_guard lock(mutex_);
      bad = unread_.EndingBehind(offset + at);
    }
    if (bad && bad->first <= offset + at) {
      const auto known = out.subspan(at).first(Available(bad->second, offset + at, out.size() - at));
      std::ranges::fill(known, std::byte{0});
      at += known.size();
    } else {
      const std::uint64_t end = bad ? bad->first : offset + out.size();
      at += ReadUpToBad(offset + at, out.subspan(at).first(Available(end, offset + at, out.size() - at)));
    }
  }
  return out.size();
}

std::optional<std::size_t> Source::ReadIfSound(std::uint64_t offset, std::span<std::byte> out) const {
  if (!IsOffset(offset) || bytes_ == nullptr) return std::nullopt;
  const auto delivered = ReadBytes(offset, out.first(Available(Size(), offset, out.size())));
  return delivered ? std::optional(*delivered) : std::nullopt;
}

bool Source::IsBadWithin(std::uint64_t begin, std::uint64_t end) const {
  const std::lock_guard lock(mutex_);
  const auto bad = unread_.EndingBehind(begin);
  return bad && bad->first < end;
}

/// What the file has lost since it was opened is a failure too.
platform::Result<std::size_t> Source::ReadBytes(std::uint64_t offset, std::span<std::byte> out) const {
  auto delivered = bytes_->ReadAt(offset, out);
  if (!delivered || *delivered == out.size()) return delivered;
  return tl::unexpected(
      platform::Failure{platform::FailureKind::kInputOutput, "source", offset, "the file has become shorter"});
}

/// Reads until something is bad, which is noted then. Returns how many bytes were read.
std::size_t Source::ReadUpToBad(std::uint64_t offset, std::span<std::byte> out) const {
  std::uint64_t badAhead = 0;
  {
    const std::lock_guard lock(mutex_);
    badAhead = unread_.BytesAheadOf(offset);
  }
  if (badAhead == 0 && ReadBytes(offset, out)) return out.size();
  for (std::size_t at = 0; at < out.size(); at += kBadPiece) {
    const auto piece = out.subspan(at, std::min(kBadPiece, out.size() - at));
    if (const auto delivered = ReadBytes(offset + at, piece); !delivered) {
      NoteBad(offset + at, BytesToSkip(offset + at, out.size() - at, badAhead), delivered.error());
      return at;
    }
    if (badAhead != 0) return piece.size();  // behind a bad stretch whose end this is
  }
  return out.size();
}

/// How much is given up where a piece could not be read: up to the first that can be read again, as far as the steps
/// tell.
std::size_t Source::BytesToSkip(std::uint64_t offset, std::size_t most, std::uint64_t badAhead) const {
  std::array<std::byte, kBadPiece> piece;
  const auto isReadable = [&](std::size_t at) {
    return ReadBytes(offset + at, std::span(piece).first(std::min(kBadPiece, most - at))).has_value();
  };
  const std::size_t lastPiece = (most - 1) / kBadPiece * kBadPiece;
  std::size_t tried = 0;  // and found bad
  while (true) {
    if (tried == lastPiece) return most;
    const std::uint64_t step =
        std::max((badAhead + tried) / kStepsInBad / kBadPiece * kBadPiece, std::uint64_t{kBadPiece});
    const std::size_t next = std::min<std::uint64_t>(tried + step, lastPiece);
    if (!isReadable(next)) {
      tried = next;
      continue;
    }
    std::size_t first = tried + kBadPiece;  // that may be readable
    for (std::size_t last = next; first < last;) {
      const std::size_t middle = first + (last - first) / 2 / kBadPiece * kBadPiece;
      if (isReadable(middle)) {
        last = middle;
      } else {
        first = middle + kBadPiece;
      }
    }
    return first;
  }
}

void Source::NoteBad(std::uint64_t offset, std::uint64_t length, const platform::Failure& failure) const {
  const std::lock_guard lock(mutex_);
  if (!firstFailure_) firstFailure_ = failure;
  unread_.Add(offset, length);
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
