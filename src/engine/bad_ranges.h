// The stretches of a source that could not be read.
#pragma once

#include <cstdint>
#include <map>

namespace velmora::engine {

/// Stretches that touch are one. A step reads at least a sector at a time, so the list takes far less memory
/// than what it tells of.
class BadRanges {
 public:
  /// A read of `length` bytes failed. Where it meets a stretch that is known already, that one is the cause,
  /// and nothing is added: the scans go over the whole source in small pieces, so theirs are the narrowest.
  void Add(std::uint64_t offset, std::uint64_t length);

  /// File offset of the first byte, and of the one behind the last.
  const std::map<std::uint64_t, std::uint64_t>& Ranges() const { return ranges_; }

 private:
  std::map<std::uint64_t, std::uint64_t> ranges_;
};

}  // namespace velmora::engine
