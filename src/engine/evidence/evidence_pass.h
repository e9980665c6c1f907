// The pass over a source that collects what proves itself in it.
//
// A block that stands where it was written shows by its signature. One that was moved as a whole has the checksum
// alone, which takes far longer to test, and bytes inside of other blocks may pass; so that is tried last, and only
// where nothing else lies.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/evidence/block_sorter.h"
#include "engine/evidence/evidence.h"
#include "engine/evidence/sights.h"
#include "engine/evidence/slot_map.h"

namespace velmora::engine {

/// What a pass found of one layout, and where.
struct Finds : Sights {
  Finds(const Generation& itsLayout, std::uint64_t fileSize) : Sights(itsLayout), taken(fileSize, itsLayout) {}

  BlockSorter sorted;       ///< whole blocks ahead of those that `whole` holds
  SlotMap taken;            ///< by whole blocks and proven pages
  bool soughtMoved = true;  ///< moved blocks, everywhere

  /// Like those of Sights.
  void TakeWhole(const SeenTrailer& seen, std::uint64_t offset, Grade grade, std::span<const std::byte> stored,
                 std::uint64_t usedUpToIt);
  void Add(const Sights& behind);

 private:
  void Mark(const FoundBlock& block) { taken.Take(block.offset, BlockSizeOnDisk(block.cb, *layout)); }
  void Mark(const FoundPage& page) {
    if (page.grade == Grade::kProven) taken.Take(page.offset, layout->pageSize);
  }
};

/// Front to back, for each of the layouts; the workers of the run look at what lies ahead. The same for any number of
/// them.
std::vector<Finds> LookThrough(const Source& source, std::span<const Generation* const> layouts, RunContext& run);

}  // namespace velmora::engine
