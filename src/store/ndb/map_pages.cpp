#include "store/ndb/map_pages.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "store/format/little_endian.h"

namespace velmora::ndb {
namespace {

constexpr std::size_t kDListEntries = 8;
constexpr std::uint32_t kAreaBits = 20;
static_assert(kDListEntries + 4 * kMaxDListEntries <= kPageContent - 12);
static_assert(kMaxAreas <= 1u << kAreaBits && kSlotsPerArea < 1u << (32 - kAreaBits));

}  // namespace

Page FullMapPage(PageType type, std::uint64_t ib) {
  Page page;
  page.fill(std::byte{0xFF});
  SealPage(page, type, {Bid{ib}, ib});
  return page;
}

Page AMapPage(const AllocationMap& map, std::uint32_t area) {
  Page page;
  std::memcpy(page.data(), map.AreaBits(area).data(), kMapBytes);
  SealPage(page, PageType::kAMap, {Bid{AreaOffset(area)}, AreaOffset(area)});
  return page;
}

Page DListPage(const AllocationMap& map, Bid bid) {
  const std::uint32_t current = map.AreaCount() - 1;
  std::vector<std::uint32_t> areas;
  for (std::uint32_t area = 0; area < current; ++area) {
    if (map.FreeSlots(area) > 0) areas.push_back(area);
  }
  const std::size_t count = std::min(areas.size(), kMaxDListEntries);
  std::partial_sort(areas.begin(), areas.begin() + static_cast<std::ptrdiff_t>(count), areas.end(),
                    [&map](std::uint32_t a, std::uint32_t b) {
                      return map.FreeSlots(a) != map.FreeSlots(b) ? map.FreeSlots(a) > map.FreeSlots(b) : a < b;
                    });
  Page page{};
  page[0] = std::byte{1};
  page[1] = static_cast<std::byte>(count);
  Store<std::uint32_t>(page, 4, current);
  for (std::size_t i = 0; i < count; ++i) {
    Store<std::uint32_t>(page, kDListEntries + 4 * i, areas[i] | map.FreeSlots(areas[i]) << kAreaBits);
  }
  SealPage(page, PageType::kDList, {bid, kDListOffset});
  return page;
}

}  // namespace velmora::ndb
