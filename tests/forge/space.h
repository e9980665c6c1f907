// File space: hands out places for blocks and pages and keeps the allocation maps.
#pragma once

#include <cstdint>
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
  explicit Space(const FormatTraits& traits);

  /// A place of `size` bytes behind all that was handed out before, aligned to `align`; neither it nor any
  /// other place overlaps a map page or crosses into the range of the next allocation map.
  std::uint64_t Allocate(std::uint64_t size, std::uint64_t align);

  /// Takes a place of the caller's choice, wherever it lies; later places follow behind it.
  void Take(std::uint64_t offset, std::uint64_t size);

  /// Behind the last place that was handed out.
  std::uint64_t End() const { return end_; }

  /// Behind the range of the last allocation map.
  std::uint64_t MappedEnd() const { return traits_.firstMap + maps_.size() * traits_.mapSpan; }

  std::size_t MapCount() const { return maps_.size(); }
  std::vector<MapPage> MapPages() const;

  /// The bits of allocation map `index`, most significant first, 1 for a slot in use.
  const Bytes& Bits(std::size_t index) const { return maps_[index]; }
  std::uint64_t FreeBytes() const;

 private:
  void OpenMap();
  void Mark(std::uint64_t offset, std::uint64_t size);

  const FormatTraits& traits_;
  std::vector<Bytes> maps_;
  std::uint64_t end_ = 0;
};

}  // namespace velmora::forge
