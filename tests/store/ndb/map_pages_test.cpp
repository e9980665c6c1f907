#include "store/ndb/map_pages.h"

#include <gtest/gtest.h>

#include "store/format/little_endian.h"

namespace velmora::ndb {
namespace {

TEST(MapPages, AMapHasTheBitsOfItsArea) {
  AllocationMap map;
  map.Allocate(3);
  map.Settle();
  const Page page = AMapPage(map, 0);
  EXPECT_EQ(page[0], std::byte{0xFF}) << "the map itself";
  EXPECT_EQ(page[1], std::byte{0xFF}) << "the PMap";
  EXPECT_EQ(page[2], std::byte{0xE0});
  EXPECT_EQ(page[3], std::byte{0});
  EXPECT_TRUE(ProvesItself(page, PageType::kAMap, {Bid{0x4400}, 0x4400}));
}

TEST(MapPages, DensityListOfANewStoreIsEmpty) {
  AllocationMap map;
  map.Settle();
  const Page page = DListPage(map, Bid{7});
  EXPECT_EQ(Load<std::uint32_t>(page, 0), 1u) << "complete, no entries";
  EXPECT_EQ(Load<std::uint32_t>(page, 4), 0u);
  EXPECT_TRUE(ProvesItself(page, PageType::kDList, {Bid{7}, 0x4200}));
}

TEST(MapPages, DensityListNamesTheEmptiestAreasFirstAndNotTheLast) {
  AllocationMap map;
  std::vector<std::uint64_t> places;
  while (map.AreaCount() < 200) places.push_back(map.Allocate(128).value());
  map.Settle();
  for (std::size_t i = 0; i < 40; ++i) map.FreeWithCommit(places[i * 30 + i % 7], 128);
  map.Settle();
  const Page page = DListPage(map, Bid{7});
  EXPECT_EQ(Load<std::uint8_t>(page, 1), 119);
  EXPECT_EQ(Load<std::uint32_t>(page, 4), 199u);
  std::uint32_t before = kSlotsPerArea;
  for (std::size_t i = 0; i < 119; ++i) {
    const auto entry = Load<std::uint32_t>(page, 8 + 4 * i);
    const std::uint32_t area = entry & 0xFFFFF;
    EXPECT_NE(area, 199u);
    EXPECT_EQ(entry >> 20, map.FreeSlots(area));
    EXPECT_LE(entry >> 20, before);
    before = entry >> 20;
  }
}

}  // namespace
}  // namespace velmora::ndb
