// What a stretch of a source shows of one layout, and what of it is at hand only while its bytes are: the kinds of
// blocks, the ids that lists name, and votes for the encoding of the store.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/evidence/bid_set.h"
#include "engine/evidence/block_evidence.h"
#include "engine/evidence/evidence.h"

namespace velmora::engine {

struct Sights {
  explicit Sights(const Generation& itsLayout) : layout(&itsLayout) {}

  const Generation* layout;
  std::vector<FoundPage> pages;
  std::vector<FoundBlock> whole;  ///< proven or moved; `kind` is what PackKinds made of it
  std::vector<FoundBlock> hurt;   ///< likewise
  BidSet named;                   ///< by whole lists
  std::array<std::uint64_t, kMethods.size()> votes{};
  std::uint64_t wholePages = 0;
  std::uint64_t wholeBlocks = 0;
  bool hasMovedBlocks = false;
  std::uint64_t end = 0;              ///< of the last thing that proves itself
  std::uint64_t usedSlots = 0;        ///< that do not end in zeros
  std::uint64_t usedAheadOfLast = 0;  ///< of these, those up to that end

  std::uint64_t Count() const { return wholePages + wholeBlocks; }

  /// Takes a block whose bytes as stored are `stored`, up to whose end there are so many used slots.
  void TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored,
                 std::uint64_t usedUpToIt);
  void TakeHurt(const SeenTrailer& seen, std::span<const std::byte> stored);
  void TakePage(const FoundPage& page);

  /// Takes what the stretch behind this one shows.
  void Add(const Sights& behind);

 private:
  bool MayName() const;
  void NoteEnd(std::uint64_t itsEnd, std::uint64_t usedUpToIt);
};

/// A kind under each method in the place of one, until the encoding is known.
BlockKind PackKinds(const Kinds& kinds);
BlockKind UnpackKind(BlockKind packed, CryptMethod method);

}  // namespace velmora::engine
