// The header and the map pages.
#include <algorithm>

#include "forge/checksum.h"
#include "forge/store.h"

namespace velmora::forge {
namespace {

constexpr std::uint16_t kListPageType = 0x8686;
constexpr std::size_t kPartialStart = 8;
constexpr std::size_t kPartialSize = 471;
constexpr std::size_t kFullSize = 516;

// Where the fields of the header stand; `width` is that of an id or offset, and `fullChecksum` 0 where there is none.
struct HeaderLayout {
  std::size_t width, nextBid, nextPageId, unique, indexes, fileEnd, lastMap, freeBytes;
  std::size_t nodeRootId, nodeRoot, blockRootId, blockRoot, mapsValid, freeMaps, sentinel, encoding, fullChecksum;
};

constexpr HeaderLayout kNarrow = {.width = 4,
                                  .nextBid = 0x18,
                                  .nextPageId = 0x1C,
                                  .unique = 0x20,
                                  .indexes = 0x24,
                                  .fileEnd = 0xA8,
                                  .lastMap = 0xAC,
                                  .freeBytes = 0xB0,
                                  .nodeRootId = 0xB8,
                                  .nodeRoot = 0xBC,
                                  .blockRootId = 0xC0,
                                  .blockRoot = 0xC4,
                                  .mapsValid = 0xC8,
                                  .freeMaps = 0xCC,
                                  .sentinel = 0x1CC,
                                  .encoding = 0x1CD,
                                  .fullChecksum = 0};

constexpr HeaderLayout kWide = {.width = 8,
                                .nextBid = 0x204,
                                .nextPageId = 0x20,
                                .unique = 0x28,
                                .indexes = 0x2C,
                                .fileEnd = 0xB8,
                                .lastMap = 0xC0,
                                .freeBytes = 0xC8,
                                .nodeRootId = 0xD8,
                                .nodeRoot = 0xE0,
                                .blockRootId = 0xE8,
                                .blockRoot = 0xF0,
                                .mapsValid = 0xF8,
                                .freeMaps = 0x100,
                                .sentinel = 0x200,
                                .encoding = 0x201,
                                .fullChecksum = 0x20C};

}  // namespace

void Store::WriteMaps() {
  std::size_t map = 0;
  for (const MapPage& place : space_.MapPages()) {
    Bytes page(traits_.pageSize);
    const std::size_t start = options_.format == Format::kAnsi ? 4 : 0;
    if (place.type == kAllocationMap) {
      const Bytes& bits = space_.Bits(map++);
      std::copy(bits.begin(), bits.end(), page.begin() + static_cast<std::ptrdiff_t>(start));
    } else {
      std::fill(page.begin() + static_cast<std::ptrdiff_t>(start), page.begin() + traits_.offPageTrailer,
                std::byte{0xFF});
    }
    SealPage(options_.format, page, static_cast<std::uint16_t>(place.type << 8 | place.type), place.offset,
             place.offset, 0);
    sink_->WriteAt(place.offset, std::move(page));
  }
  if (!traits_.wide) return;
  Bytes list(traits_.pageSize);
  Put(list, 4, space_.MapCount() - 1, 4);
  SealPage(options_.format, list, kListPageType, traits_.listPage, nextPageId_++);
  sink_->WriteAt(traits_.listPage, std::move(list));
}

void Store::WriteHeader(const TreeRoot& nodes, const TreeRoot& blocks, std::uint64_t fileSize) {
  const HeaderLayout& layout = traits_.wide ? kWide : kNarrow;
  Bytes header(traits_.wide ? 564 : 512);
  // Folders hand their counter on to the tables that go with them, search folders to theirs.
  for (const unsigned table : {0x0DU, 0x0EU, 0x0FU}) lastIndex_[table] = std::max(lastIndex_[table], lastIndex_[2]);

  Put(header, 0, 0x4E444221, 4);
  Put(header, 8, static_cast<std::uint16_t>(options_.client), 2);
  Put(header, 0x0A, traits_.version, 2);
  Put(header, 0x0C, options_.client == Client::kOffline ? 12 : 19, 2);
  Put(header, 0x0E, 0x0101, 2);
  Put(header, layout.nextBid, nextBid_, layout.width);
  Put(header, layout.nextPageId, nextPageId_, layout.width);
  Put(header, layout.unique, rowVersion_, 4);
  for (std::size_t i = 0; i < lastIndex_.size(); ++i) Put(header, layout.indexes + 4 * i, lastIndex_[i], 4);
  Put(header, layout.fileEnd, fileSize, layout.width);
  Put(header, layout.lastMap, traits_.firstMap + (space_.MapCount() - 1) * traits_.mapSpan, layout.width);
  Put(header, layout.freeBytes, space_.FreeBytes(), layout.width);
  Put(header, layout.nodeRootId, nodes.pageId, layout.width);
  Put(header, layout.nodeRoot, nodes.offset, layout.width);
  Put(header, layout.blockRootId, blocks.pageId, layout.width);
  Put(header, layout.blockRoot, blocks.offset, layout.width);
  Put(header, layout.mapsValid, 2, 1);
  const auto maps = header.begin() + static_cast<std::ptrdiff_t>(layout.freeMaps);
  std::fill(maps, maps + 256, options_.format == Format::kUnicode4k ? std::byte{0} : std::byte{0xFF});
  Put(header, layout.sentinel, 0x80, 1);
  Put(header, layout.encoding, static_cast<std::uint8_t>(options_.encoding), 1);
  Put(header, 4, Checksum(std::span(header).subspan(kPartialStart, kPartialSize)), 4);
  if (layout.fullChecksum != 0) {
    Put(header, layout.fullChecksum, Checksum(std::span(header).subspan(kPartialStart, kFullSize)), 4);
  }
  sink_->WriteAt(0, std::move(header));
}

}  // namespace velmora::forge
