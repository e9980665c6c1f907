// A guard against stores whose parts name one another over and over.
#pragma once

#include <cstdint>

#include "engine/scanned_store.h"

namespace velmora::engine {

/// How much a step of the run may still take out of a store.
///
/// A sound store gives each block out about once, or as often as stale copies of a node repeat it. A store made
/// to do harm can name one block in every entry of a list, and that list in every node: a megabyte of it would
/// fill any disk and any memory. The limits lie far above what a sound store can hold and in proportion to its size,
/// so time and memory of a run stay in proportion too.
///
/// Each question is asked before the thing is read or kept, and a "no" leaves it out, like something that cannot be
/// found. What is refused once is refused from then on.
class ContentAllowance {
 public:
  /// How often a byte of the source may be read and come out, in the format with packed blocks and in others; and so
  /// much is no harm however small the source.
  static constexpr std::uint64_t kPackedTimesOver = 512;
  static constexpr std::uint64_t kTimesOver = 64;
  static constexpr std::uint64_t kLeastBytes = std::uint64_t{16} << 20;
  /// What each node may take besides: a block of the common size, and the texts in it. So a store full of nodes that
  /// share a block still gives each of them, and none suffers for what others claim.
  static constexpr std::uint64_t kBytesOfNode = std::uint64_t{16} << 10;

  /// How many attachments each node and each block may stand for.
  static constexpr std::uint64_t kPartsEach = 16;
  static constexpr std::uint64_t kLeastParts = 1024;

  /// One node stays in memory with all that it embeds until it is done: as much as the source could hold, in these
  /// limits.
  static constexpr std::uint64_t kLeastHeld = std::uint64_t{16} << 20;
  static constexpr std::uint64_t kMostHeld = std::uint64_t{128} << 20;
  /// What an attachment or embedded message takes in memory besides its texts.
  static constexpr std::uint64_t kHeldByPart = 1024;

  /// Names of folders and the report's texts stay in memory for the whole run: of those that are longer than names
  /// are, so many bytes, and as many as the source has.
  static constexpr std::uint64_t kLeastKept = std::uint64_t{4} << 20;
  static constexpr std::uint64_t kLongestName = 255;

  /// The report's list of losses has this many lines, and one more for so many bytes of the source: one for each node.
  static constexpr std::uint64_t kLeastLosses = 10000;
  static constexpr std::uint64_t kBytesOfLoss = 32;

  ContentAllowance() = default;
  ContentAllowance(std::uint64_t sourceBytes, bool packed, std::uint64_t nodesAndBlocks);

  /// That of a run at the beginning of a step, when so many nodes are left.
  static ContentAllowance Of(const ScannedStore& store, std::uint32_t nodesLeft);

  /// What the report may read to say how much is lost: so much as the source has. It takes nothing from the run's.
  static ContentAllowance ForReport(const ScannedStore& store);

  /// To be called ahead of each node.
  void BeginNode();

  /// Bytes that are read, or written as content.
  bool TakeBytes(std::uint64_t count);
  bool BytesSpent() const { return bytes_ == 0 && bytesOfNode_ == 0; }

  /// Bytes of the source that stay in memory until the node under work is done.
  bool TakeHeld(std::uint64_t count) { return Take(held_, count); }

  /// A text of so many bytes of the source: it is read and it stays.
  bool TakeText(std::uint64_t count) { return TakeBytes(count) && TakeHeld(count); }

  /// An attachment or embedded message.
  bool TakePart() { return Take(parts_, 1) && TakeHeld(kHeldByPart); }

  /// A text of so many UTF-16 units that stays in memory for the whole run.
  bool TakeKept(std::uint64_t units) { return units <= kLongestName || Take(kept_, 2 * units); }

  /// Lines of the report about things lost, in a whole run.
  std::uint64_t MostLosses() const { return losses_; }

 private:
  static bool Take(std::uint64_t& left, std::uint64_t count);

  std::uint64_t bytes_ = 0;
  std::uint64_t bytesOfNode_ = 0;
  std::uint64_t parts_ = 0;
  std::uint64_t heldByNode_ = 0;
  std::uint64_t held_ = 0;
  std::uint64_t kept_ = 0;
  std::uint64_t losses_ = 0;
};

}  // namespace velmora::engine
