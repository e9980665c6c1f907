// The file that is read, and what of it could not be read.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

#include "platform/file.h"

namespace velmora::engine {

/// The stretches of a source that could not be read; those that touch are one. A step reads at least a sector at a
/// time, so the list takes far less memory than what it lists.
class BadRanges {
 public:
  /// From the first offset to before the second.
  using Range = std::pair<std::uint64_t, std::uint64_t>;

  /// A read of `length` bytes failed. Where it meets a stretch that is known already, that one is the cause,
  /// and nothing is added: the scans go over the whole source in small pieces, so theirs are the narrowest.
  void Add(std::uint64_t offset, std::uint64_t length);

  /// File offset of the first byte, and of the one behind the last.
  const std::map<std::uint64_t, std::uint64_t>& Ranges() const { return ranges_; }

  /// The first stretch that ends behind the offset: the one that holds it, or one farther on.
  std::optional<Range> EndingBehind(std::uint64_t offset) const;

  /// The length of the stretch that ends at the offset; 0 where none does.
  std::uint64_t BytesAheadOf(std::uint64_t offset) const;

 private:
  std::map<std::uint64_t, std::uint64_t> ranges_;
};

/// May be read by several threads at once; opened and closed by one. It has the size that it had when it was opened:
/// what a file grows by meanwhile is not read, and what it loses cannot be read.
class Source {
 public:
  /// Forgets what was known of another one. Ahead of `begin` there is nothing but zeros, and no need to look.
  void Open(std::shared_ptr<const platform::ByteSource> bytes, std::uint64_t begin = 0);

  /// What was opened; null while nothing is.
  const std::shared_ptr<const platform::ByteSource>& Bytes() const { return bytes_; }

  /// What could not be read stays known.
  void Close() { bytes_.reset(); }

  /// 0 while none is open.
  std::uint64_t Size() const { return bytes_ == nullptr ? 0 : bytes_->Size(); }

  /// Where the bytes begin that are worth a look.
  std::uint64_t Begin() const { return begin_; }

  /// Reads into `out` and returns how many bytes there were. A read that fails is kept with its range. An offset that
  /// no file can have (top bit set) is refused and is no bad place of the source.
  [[nodiscard]] platform::Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> out) const;

  /// The same for a reader of large pieces: whatever of `out` cannot be read is zeros, so that one bad sector does not
  /// hide what lies behind it. A failing disk takes seconds to say so, so in a bad stretch the steps to the next try
  /// grow with its length, and what they pass over counts as bad; a stretch that is known is not tried again. Returns
  /// how many bytes the source has there, those that cannot be read among them.
  std::size_t ReadAround(std::uint64_t offset, std::span<std::byte> out) const;

  /// Reads into `out` and returns how many bytes there were, nothing where some could not be read; this is not kept, so
  /// it is for bytes that are read ahead of their turn.
  std::optional<std::size_t> ReadIfSound(std::uint64_t offset, std::span<std::byte> out) const;

  /// Is anything from one offset to before the other known to be bad?
  bool IsBadWithin(std::uint64_t begin, std::uint64_t end) const;

  /// The first read that failed.
  std::optional<platform::Failure> FirstFailure() const;
  BadRanges Unread() const;

 private:
  platform::Result<std::size_t> ReadBytes(std::uint64_t offset, std::span<std::byte> out) const;
  std::size_t ReadUpToBad(std::uint64_t offset, std::span<std::byte> out) const;
  std::size_t BytesToSkip(std::uint64_t offset, std::size_t most, std::uint64_t badAhead) const;
  void NoteBad(std::uint64_t offset, std::uint64_t length, const platform::Failure& failure) const;

  std::shared_ptr<const platform::ByteSource> bytes_;
  std::uint64_t begin_ = 0;
  mutable std::mutex mutex_;  ///< guards what follows
  mutable std::optional<platform::Failure> firstFailure_;
  mutable BadRanges unread_;
};

}  // namespace velmora::engine
