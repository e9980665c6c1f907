// File space: hands out places for blocks and pages and keeps the allocation maps.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "forge/bytes.h"
#include "forge/format.h"

namespace velmora::forge {

inline constexpr std::uint8_t kAllocationMap = 0x84;

/// A map page: of a kind (0x84 allocation, 0x83 page, 0x82 free, 0x85 free page) at an offset.
struct MapPage {
  std::uint8_t type;
  std::uint64_t offset;
};

class Space {
 public:
  /// `pieces` other than 0 strews what is handed out over so many pieces of the file, each filled from its start.
  explicit Space(const FormatTraits& traits, std::size_t pieces = 0);

  /// A place of `size` bytes behind all that was handed out before, aligned to `align`; neither it nor any
  /// other place overlaps a map page or crosses into the range of the next allocation map.
  std::uint64_t Allocate(std::uint64_t size, std::uint64_t align);

  /// Takes a place of the caller's choice, wherever it lies; later places follow behind it.
  void Take(std::uint64_t offset, std::uint64_t size);

  /// Frees a place that was handed out. No other takes it.
  void Free(std::uint64_t offset, std::uint64_t size);

  /// Behind the last place that was handed out.
  std::uint64_t End() const { return end_; }

  /// Bytes handed out so far, freed ones too.
  std::uint64_t HandedOut() const { return handedOut_; }

  /// Behind the range of the last allocation map.
  std::uint64_t MappedEnd() const { return traits_.firstMap + maps_.size() * traits_.mapSpan; }

  std::size_t MapCount() const { return maps_.size(); }
  std::vector<MapPage> MapPages() const;

  /// The bits of allocation map `index`, most significant first, 1 for a slot in use.
  const Bytes& Bits(std::size_t index) const { return maps_[index]; }
  std::uint64_t FreeBytes() const;

 private:
  struct Piece {
    std::uint64_t at = 0;
    std::uint64_t end = 0;
  };

  void OpenMap();
  std::uint64_t Advance(std::uint64_t size, std::uint64_t align);
  std::uint64_t TakeFromPiece(std::uint64_t size, std::uint64_t align);
  void Mark(std::uint64_t offset, std::uint64_t size, bool used = true);

  const FormatTraits& traits_;
  std::vector<Bytes> maps_;
  std::vector<Piece> pieces_;
  std::minstd_rand anyPiece_;
  std::uint64_t end_ = 0;
  std::uint64_t handedOut_ = 0;
};

}  // namespace velmora::forge
