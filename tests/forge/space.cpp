#include "forge/space.h"

#include <algorithm>
#include <bit>

namespace velmora::forge {
namespace {

// Of a piece of the file when places are strewn: of 512-byte pages two fit into the range of a map.
constexpr std::uint64_t kBlocksOfPiece = 15;

constexpr std::uint8_t kFreeMap = 0x82;
constexpr std::uint8_t kPageMap = 0x83;
constexpr std::uint8_t kFreePageMap = 0x85;

// The map pages at the head of range `index`. The rarest one has two places in which readers look for it,
// and so it is there twice. Stores of 4K pages have allocation maps alone.
std::vector<MapPage> PagesOfRange(const FormatTraits& traits, std::size_t index) {
  const std::uint64_t start = traits.firstMap + index * traits.mapSpan;
  std::vector<MapPage> pages = {{kAllocationMap, start}};
  if (traits.pageSize != 512) return pages;
  if (index % 8 == 0) pages.push_back({kPageMap, start + 0x200});
  if (index >= 128 && (index - 128) % 496 == 0) pages.push_back({kFreeMap, start + 0x400});
  if (index >= 8192 && (index - 8192) % 31744 == 0) {
    pages.push_back({kFreePageMap, start + 0x400});
    pages.push_back({kFreePageMap, start + 0x600});
  }
  return pages;
}

}  // namespace

Space::Space(const FormatTraits& traits, std::size_t pieces) : traits_(traits), pieces_(pieces) {
  OpenMap();
  end_ = traits.firstData;
}

void Space::OpenMap() {
  const auto pages = PagesOfRange(traits_, maps_.size());
  maps_.emplace_back(traits_.mapSpan / traits_.slotSize / 8);
  for (const MapPage& page : pages) Mark(page.offset, traits_.pageSize);
  end_ = pages.back().offset + traits_.pageSize;
}

void Space::Mark(std::uint64_t offset, std::uint64_t size, bool used) {
  if (offset < traits_.firstMap) return;
  const std::uint64_t first = (offset - traits_.firstMap) / traits_.slotSize;
  const std::uint64_t last = (offset + size - 1 - traits_.firstMap) / traits_.slotSize;
  const std::uint64_t slotsOfMap = traits_.mapSpan / traits_.slotSize;
  for (std::uint64_t slot = first; slot <= last && slot / slotsOfMap < maps_.size(); ++slot) {
    const std::uint64_t bit = slot % slotsOfMap;
    const std::byte mask = std::byte{0x80} >> (bit % 8);
    std::byte& bits = maps_[slot / slotsOfMap][bit / 8];
    bits = used ? bits | mask : bits & ~mask;
  }
}

std::uint64_t Space::Advance(std::uint64_t size, std::uint64_t align) {
  std::uint64_t start = (end_ + align - 1) / align * align;
  while (start + size > MappedEnd()) {
    OpenMap();
    start = (end_ + align - 1) / align * align;
  }
  end_ = start + size;
  return start;
}

std::uint64_t Space::TakeFromPiece(std::uint64_t size, std::uint64_t align) {
  Piece& piece = pieces_[anyPiece_() % pieces_.size()];
  const auto aligned = [&] { return (piece.at + align - 1) / align * align; };
  if (aligned() + size > piece.end) {
    const std::uint64_t length = kBlocksOfPiece * (traits_.maxBlockData + traits_.blockTrailerSize);
    const std::uint64_t start = Advance(length, traits_.pageSize);
    piece = {.at = start, .end = start + length};
  }
  const std::uint64_t start = aligned();
  piece.at = start + size;
  return start;
}

std::uint64_t Space::Allocate(std::uint64_t size, std::uint64_t align) {
  const std::uint64_t start = pieces_.empty() ? Advance(size, align) : TakeFromPiece(size, align);
  Mark(start, size);
  handedOut_ += size;
  return start;
}

void Space::Free(std::uint64_t offset, std::uint64_t size) { Mark(offset, size, false); }

void Space::Take(std::uint64_t offset, std::uint64_t size) {
  const std::uint64_t end = std::max(end_, offset + size);
  while (end > MappedEnd()) OpenMap();
  Mark(offset, size);
  end_ = std::max(end_, end);
}

std::vector<MapPage> Space::MapPages() const {
  std::vector<MapPage> all;
  for (std::size_t i = 0; i < maps_.size(); ++i) {
    const auto pages = PagesOfRange(traits_, i);
    all.insert(all.end(), pages.begin(), pages.end());
  }
  return all;
}

std::uint64_t Space::FreeBytes() const {
  std::uint64_t used = 0;
  for (const Bytes& bits : maps_) {
    for (const std::byte b : bits) used += static_cast<unsigned>(std::popcount(std::to_integer<std::uint8_t>(b)));
  }
  return (maps_.size() * (traits_.mapSpan / traits_.slotSize) - used) * traits_.slotSize;
}

}  // namespace velmora::forge
