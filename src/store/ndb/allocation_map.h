// Which parts of the file are in use. From 0x4400 the file is a row of areas of 0x3E000 bytes, each of 3968
// slots of 64 bytes; the first page of an area is its map (AMap), one bit a slot, the high bit of a byte
// first. Further map pages follow it in some areas:
//
//   PMap   in every 8th area                         at 0x200 in the area
//   FMap   in area 128, then in every 496th          at 0x400
//   FPMap  in area 8192, then in every 31744th       at 0x400 and 0x600: sources differ on the place, so both
//                                                    are kept free and filled
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "store/format/block.h"
#include "store/format/page.h"

namespace velmora::ndb {

inline constexpr std::uint64_t kFirstArea = 0x4400;
inline constexpr std::size_t kMapBytes = kPageContent;
inline constexpr std::uint32_t kSlotsPerArea = kMapBytes * 8;
inline constexpr std::uint64_t kAreaSize = kSlotsPerArea * kSlotSize;
static_assert(kSlotsPerArea == 3968 && kAreaSize == 0x3E000);

/// Most areas: the density list has 20 bits for the number of one. 266 GB of file.
inline constexpr std::uint32_t kMaxAreas = 1u << 20;

constexpr std::uint64_t AreaOffset(std::uint32_t area) { return kFirstArea + area * kAreaSize; }

/// The map pages of an area, in the order in which they stand at its beginning.
std::span<const PageType> MapPagesOf(std::uint32_t area);
inline constexpr std::size_t kMostMapPages = 4;

class AllocationMap {
 public:
  using Bits = std::array<std::uint8_t, kMapBytes>;

  explicit AllocationMap(std::uint32_t maxAreas = kMaxAreas);

  /// Takes `slots` (at most 128) slots in a row within one area, at a multiple of `alignment` slots; returns
  /// their file offset, or nothing when the file has reached its largest size. May add an area.
  std::optional<std::uint64_t> Allocate(std::uint32_t slots, std::uint32_t alignment = 1);

  /// Frees slots that no commit refers to: they may be taken again at once.
  void Free(std::uint64_t ib, std::uint32_t slots);

  /// Frees slots that the last commit still needs, with the next Settle.
  void FreeWithCommit(std::uint64_t ib, std::uint32_t slots);

  /// Carries out FreeWithCommit; afterwards the map tells exactly what is in use, until the next Allocate.
  void Settle();

  std::uint32_t AreaCount() const { return static_cast<std::uint32_t>(areas_.size()); }
  const Bits& AreaBits(std::uint32_t area) const;
  std::uint32_t FreeSlots(std::uint32_t area) const { return areas_[area].freeSlots; }
  std::uint64_t FreeBytes() const;
  std::uint64_t FileSize() const { return AreaOffset(AreaCount()); }

 private:
  /// Most areas of a large store are full, and their bits need not be held.
  struct Area {
    std::unique_ptr<Bits> bits;  ///< null: all of it is in use
    std::uint16_t freeSlots = 0;
  };

  /// Slots in a row within one area, numbered over the whole file.
  struct Run {
    std::uint32_t first;
    std::uint32_t count;
  };

  // Open runs are taken from before anything else is searched; their slots are marked as used. The list is
  // short: the smallest goes back to the map when another one needs its place.
  static constexpr std::size_t kMaxOpenRuns = 8;

  bool OpenRunOf(std::uint32_t slots);
  void AddOpenRun(Run run);
  std::optional<Run> FindFreeRun(std::uint32_t slots);
  void AddArea();
  void Mark(Run run, bool used);

  std::uint32_t maxAreas_;
  std::vector<Area> areas_;
  std::vector<Run> openRuns_;
  std::vector<Run> freedWithCommit_;
  std::uint32_t searchSlot_ = 0;  ///< free runs before this slot are not searched again until Settle
};

}  // namespace velmora::ndb
