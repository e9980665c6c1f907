// A guard against stores whose blocks name one another over and over.
#pragma once

#include <algorithm>
#include <cstdint>

namespace velmora::recovery {

/// How much content and how many attachments a run may still take out of a store.
///
/// A sound store gives each block out about once, or as often as stale copies of a node repeat it. A store made
/// to do harm can name one block in every entry of a list, and that list in every node: a megabyte of it would
/// fill any disk. The limits lie far above what a sound store can hold and in proportion to its size, so the
/// work of a run stays in proportion too.
class ContentAllowance {
 public:
  /// How often a byte of the source may come out as content, in the format with packed blocks and in others.
  static constexpr std::uint64_t kPackedTimesOver = 512;
  static constexpr std::uint64_t kTimesOver = 64;
  /// How many attachments each node and each block may stand for.
  static constexpr std::uint64_t kPartsEach = 16;

  ContentAllowance() = default;
  ContentAllowance(std::uint64_t sourceBytes, bool packed, std::uint64_t nodesAndBlocks)
      : bytes_((sourceBytes + 1) * (packed ? kPackedTimesOver : kTimesOver)),
        parts_((nodesAndBlocks + 1) * kPartsEach) {}

  /// To be asked before the bytes are read. False when the store claims more than it may: the content is left out
  /// then, like one that cannot be found.
  bool TakeBytes(std::uint64_t count) { return Take(bytes_, count); }

  /// The same for one attachment or embedded message.
  bool TakePart() { return Take(parts_, 1); }

 private:
  static bool Take(std::uint64_t& left, std::uint64_t count) {
    if (count > left) {
      left = 0;
      return false;
    }
    left -= count;
    return true;
  }

  std::uint64_t bytes_ = 0;
  std::uint64_t parts_ = 0;
};

}  // namespace velmora::recovery
