// The pass over a source that collects what proves itself in it, and what of it is at hand only then: the kinds of
// blocks, the ids that lists name, and votes for the encoding of the store.
//
// A block that stands where it was written shows by its signature. One that was moved as a whole has the checksum
// alone, which takes far longer to test, and bytes inside of other blocks may pass; so that is tried last, and only
// where nothing else lies.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "engine/evidence/block_evidence.h"
#include "engine/evidence/evidence.h"

namespace velmora::engine {

/// Which units of file space belong to something that proves itself.
class SlotMap {
 public:
  SlotMap(std::uint64_t fileSize, const Generation& layout)
      : slot_(layout.slotSize), taken_(static_cast<std::size_t>(fileSize / layout.slotSize + 1)) {}

  /// Units that lie wholly in the range.
  void Take(std::uint64_t offset, std::uint64_t size);
  bool IsFree(std::uint64_t offset, std::uint64_t size) const;
  std::uint64_t Taken() const { return static_cast<std::uint64_t>(std::ranges::count(taken_, true)); }

 private:
  std::uint64_t slot_;
  std::vector<bool> taken_;
};

/// What a pass found of one layout.
struct Finds {
  Finds(const Generation& itsLayout, std::uint64_t fileSize) : layout(&itsLayout), taken(fileSize, itsLayout) {}

  const Generation* layout;
  SlotMap taken;  ///< by whole blocks and proven pages
  std::vector<FoundPage> pages;
  std::vector<FoundBlock> whole;  ///< proven or moved; `kind` is what PackKinds made of it
  std::vector<FoundBlock> hurt;   ///< likewise
  std::vector<Bid> named;         ///< by whole lists; may hold an id twice
  std::array<std::uint64_t, kMethods.size()> votes{};
  std::uint64_t wholePages = 0;
  bool soughtMoved = true;            ///< moved blocks, everywhere
  std::uint64_t end = 0;              ///< of the last thing that proves itself
  std::uint64_t usedSlots = 0;        ///< that do not end in zeros
  std::uint64_t usedAheadOfLast = 0;  ///< of these, those up to that end

  std::uint64_t Count() const { return wholePages + whole.size(); }

  /// Takes a block whose bytes as stored are `stored`.
  void TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored);
  void TakeHurt(const SeenTrailer& seen, std::span<const std::byte> stored);
  void TakePage(const FoundPage& page);

 private:
  void Name(std::span<const std::byte> list);
  void NoteEnd(std::uint64_t itsEnd);

  std::size_t namesAtMost_ = std::size_t{1} << 20;
};

/// A kind under each method in the place of one, until the encoding is known.
BlockKind PackKinds(const Kinds& kinds);
BlockKind UnpackKind(BlockKind packed, CryptMethod method);

/// Front to back, for each of the layouts.
std::vector<Finds> LookThrough(const Source& source, std::span<const Generation* const> layouts, RunContext& run);

}  // namespace velmora::engine
